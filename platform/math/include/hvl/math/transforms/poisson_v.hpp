// A Poisson number of a mean of its own, without anything prepared for the mean: below 10 the probabilities are added up
// from 0 on, else transformed rejection.
#pragma once

#include "added_up.hpp"
#include "poisson_rejection.hpp"

namespace hvl::math {

inline constexpr double poisson_v_least_rejected = 10;

// u is refined(). What has less than 2^-53 of the probability is not reached.
template <class O>
HVL_MATH_INLINE typename O::value poisson_added_up(typename O::value mean, typename O::value u) {
  return detail::added_up<O>(
             exp<O>(detail::negated<O>(mean)), u,
             [&](typename O::value, double next)
                 __attribute__((always_inline)) { return mean / O::set(next); })
      .k;
}

// One value, for a policy of one number: the two words as uniforms on [0, 1] in steps of `cell`.
template <class O>
HVL_MATH_INLINE std::int32_t poisson_of_mean(double mean, double first, double second, double cell,
                                             const std::uint32_t (&own)[2]) {
  if (mean < poisson_v_least_rejected)
    return static_cast<std::int32_t>(poisson_added_up<O>(mean, refined<O>(first, second, cell)));
  return static_cast<std::int32_t>(
      rejection_result<O>(rejection_value<O>(first - 0.5, second, cell, own, poisson_rejection_of(mean))));
}

} // namespace hvl::math
