// The binomial distribution by transformed rejection, BTRS of Hoermann's.
#pragma once

#include "transformed_rejection.hpp"

namespace hvl::math {
namespace detail {

// Hoermann's constants for a law of this deviation and log_scale, the rest of which is set.
HVL_MATH_INLINE void set_binomial_hat(rejection_law& law, double deviation, double rarer) {
  using O = scalar_ops<double>;
  law.b = O::fma(deviation, 2.53, 1.15);
  law.a = O::fma(law.b, 0.0248, O::fma(rarer, 0.01, -0.0873));
  law.squeeze = 0.92 - 4.2 / law.b;
  const double alpha = (2.83 + 5.1 / law.b) * deviation;
  const rejection_terms<O> at_mode = rejection_terms_at<O>(law.mode, law);
  law.log_scale = log<O>(alpha) + O::fma(log<O>(at_mode.product), 0.5, at_mode.rest);
}

} // namespace detail

// At least 10 successes and 10 failures are to be expected.
HVL_MATH_INLINE rejection_law binomial_rejection_of(std::int32_t trials, double p) {
  const double n = trials;
  const double q = 1 - p;
  rejection_law law{};
  law.factors = 2;
  law.centre = n * p;
  law.mode = static_cast<double>(static_cast<std::int64_t>((n + 1) * p));
  law.greatest = n;
  law.slope[0] = 1;
  law.slope[1] = -1;
  law.offset[0] = 1;
  law.offset[1] = n + 1;
  law.mean[0] = law.centre;
  law.mean[1] = n * q;
  detail::set_binomial_hat(law, scalar_ops<double>::sqrt(law.centre * q), p < q ? p : q);
  return law;
}

} // namespace hvl::math
