#include <hvl/math/transforms/hypergeometric_rejection.hpp>

#include "law_call.hpp"
#include "rejection_call.hpp"

using namespace hvl::streams;

int viRngHypergeometric_64(int64_t method, vqs_stream stream, int64_t n, int32_t* r, int32_t l, int32_t s,
                           int32_t m) {
  rejection_parameters parameters{};
  const auto rejected = [&](const engine& e, const kernel_set& kernels) {
    return rejection_transform(parameters, hvl::math::hypergeometric_rejection_of(l, s, m), e, kernels);
  };
  return law_call<hvl::math::hypergeometric_law>(method, hypergeometric_fault, stream, n, r, rejected, l, s,
                                                 m);
}
