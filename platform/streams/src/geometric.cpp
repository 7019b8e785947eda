#include "geometric.hpp"

#include <hvl/math/transforms/geometric.hpp>

#include "parameters.hpp"

using namespace hvl::streams;

int viRngGeometric_64(int64_t method, vqs_stream stream, int64_t n, int32_t* r, double p) {
  const auto status = [&] { return parameters_status(method == 0, geometric_fault(p)); };
  geometric_parameters parameters{};
  return vector_call(status, stream, n, r, [&](const engine& e, const kernel_set& kernels) {
    parameters.unit = uniform_coefficients(e.scale, 0.0, 1.0);
    parameters.scale = hvl::math::geometric_scale(p);
    return transform_of(kernels.geometric(e.kind), &parameters, hvl::math::geometric_icdf_words, sizeof(*r));
  });
}
