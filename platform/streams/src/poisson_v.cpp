#include "poisson_v.hpp"

#include <algorithm>

#include "parameters.hpp"

using namespace hvl::streams;

namespace {

// A call of so many values is never cut over threads.
constexpr std::int64_t values_per_call = 16384;

} // namespace

int viRngPoissonV_64(int64_t method, vqs_stream stream, int64_t n, int32_t* r, const double* lambda) {
  if (lambda == nullptr)
    return VQS_STATUS_NULL_POINTER;
  const auto status = [&] { return parameters_status(method == 0, poisson_v_fault(lambda, n)); };
  const auto checked = [] { return VQS_STATUS_OK; };
  const double* next_mean = lambda;
  poisson_v_parameters parameters{{}, &next_mean};
  const auto make = [&](const engine& e, const kernel_set& kernels) {
    parameters.unit = uniform_coefficients(e.scale, 0.0, 1.0);
    return transform_of(kernels.poisson_v(e.kind), &parameters, hvl::math::transformed_rejection_words,
                        sizeof(*r));
  };
  std::int64_t made = std::min(n, values_per_call);
  int result = vector_call(status, stream, made, r, make);
  for (; result == VQS_STATUS_OK && made < n; made += std::min(n - made, values_per_call))
    result = vector_call(checked, stream, std::min(n - made, values_per_call), r + made, make);
  return result;
}
