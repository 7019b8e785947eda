// The binomial distribution by transformed rejection, BTRS of Hoermann's.
#pragma once

#include "transformed_rejection.hpp"

namespace hvl::math {
namespace detail {

// Hoermann's constants for a law of this deviation and log_scale, the rest of which is set.
template <class O>
HVL_MATH_INLINE void set_binomial_hat(rejection_law_of<typename O::value>& law, typename O::value deviation,
                                      double rarer) {
  law.b = O::fma(deviation, O::set(2.53), O::set(1.15));
  law.a = O::fma(law.b, O::set(0.0248), O::set(scalar_ops<double>::fma(rarer, 0.01, -0.0873)));
  law.squeeze = O::set(0.92) - O::set(4.2) / law.b;
  const auto alpha = (O::set(2.83) + O::set(5.1) / law.b) * deviation;
  const rejection_terms<O> at_mode = rejection_terms_at<O>(law.mode, law);
  law.log_scale = log<O>(alpha) + O::fma(log<O>(at_mode.product), O::set(0.5), at_mode.rest);
}

} // namespace detail

// At least 10 successes and 10 failures are to be expected of the trials, each a success with probability p = 1 - q.
template <class O>
HVL_MATH_INLINE rejection_law_of<typename O::value> binomial_rejection_of(typename O::value trials, double p,
                                                                          double q) {
  const auto one = O::set(1.0);
  rejection_law_of<typename O::value> law{};
  law.factors = 2;
  law.centre = trials * O::set(p);
  law.mode = detail::rounded_down<O>((trials + one) * O::set(p));
  law.least = O::set(0.0);
  law.greatest = trials;
  law.slope[0] = one;
  law.slope[1] = O::set(-1.0);
  law.offset[0] = one;
  law.offset[1] = trials + one;
  law.mean[0] = law.centre;
  law.mean[1] = trials * O::set(q);
  detail::set_binomial_hat<O>(law, O::sqrt(law.centre * O::set(q)), p < q ? p : q);
  return law;
}

HVL_MATH_INLINE rejection_law binomial_rejection_of(std::int32_t trials, double p) {
  return binomial_rejection_of<scalar_ops<double>>(trials, p, 1 - p);
}

} // namespace hvl::math
