#include "negative_binomial.hpp"

#include <hvl/math/transforms/negative_binomial.hpp>

#include "law_call.hpp"

using namespace hvl::streams;

int viRngNegbinomial_64(int64_t method, vqs_stream stream, int64_t n, int32_t* r, double a, double p) {
  negative_binomial_parameters parameters{};
  const auto mixed = [&](const engine& e, const kernel_set& kernels) {
    parameters = {uniform_coefficients(e.scale, -1.0, 1.0), uniform_coefficients(e.scale, 0.0, 1.0),
                  hvl::math::negative_binomial_means(a, p)};
    return transform_of(kernels.negative_binomial(e.kind), &parameters,
                        hvl::math::negative_binomial_mixed_words, sizeof(*r));
  };
  return law_call<hvl::math::negative_binomial_law>(method, negative_binomial_fault, stream, n, r, mixed, a,
                                                    p);
}
