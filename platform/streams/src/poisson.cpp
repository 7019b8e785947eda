#include <hvl/math/transforms/poisson_rejection.hpp>

#include "law_call.hpp"
#include "rejection_call.hpp"

using namespace hvl::streams;

int viRngPoisson_64(int64_t method, vqs_stream stream, int64_t n, int32_t* r, double lambda) {
  rejection_parameters parameters{};
  const auto rejected = [&](const engine& e, const kernel_set& kernels) {
    return rejection_transform(parameters, hvl::math::poisson_rejection_of(lambda), e, kernels);
  };
  return law_call<hvl::math::poisson_law>(method, poisson_fault, stream, n, r, rejected, lambda);
}
