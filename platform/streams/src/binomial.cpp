#include <hvl/math/transforms/binomial_rejection.hpp>

#include "law_call.hpp"
#include "rejection_call.hpp"

using namespace hvl::streams;

int viRngBinomial_64(int64_t method, vqs_stream stream, int64_t n, int32_t* r, int32_t ntrial, double p) {
  rejection_parameters parameters{};
  const auto rejected = [&](const engine& e, const kernel_set& kernels) {
    return rejection_transform(parameters, hvl::math::binomial_rejection_of(ntrial, p), e, kernels);
  };
  return law_call<hvl::math::binomial_law>(method, binomial_fault, stream, n, r, rejected, ntrial, p);
}
