// The negative binomial distribution where it has no table: a Poisson number whose mean is gamma distributed.
#pragma once

#include "../erfinv.hpp"
#include "gamma.hpp"
#include "poisson_v.hpp"

namespace hvl::math {

// `successes` is a shape, positive; p lies in (0, 1].
HVL_MATH_INLINE gamma_constants<double> negative_binomial_means(double successes, double p) {
  return gamma_constants_of<double>(successes, 0.0, (1 - p) / p);
}

// One value, for a policy of one number. Of the six words two make the mean's normal number, one its acceptance, one its
// power at shapes below 1, and two the Poisson number; the first is scaled to [-1, 1], the others to [0, 1].
template <class O>
HVL_MATH_INLINE std::int32_t negative_binomial_mixed(const double (&uniforms)[6], const double (&cells)[6],
                                                     const std::uint32_t (&own)[6],
                                                     const gamma_constants<double>& means) {
  const double e = erfinv<O>(O::lesser(refined<O>(uniforms[0], uniforms[1], cells[0]), 1.0));
  const double mean = gamma_marsaglia<O>(e, uniforms[2], uniforms[3], own, 0, means);
  const std::uint32_t of_number[2] = {own[4], own[5]};
  return poisson_of_mean<O>(mean, uniforms[4], uniforms[5], cells[5], of_number);
}

} // namespace hvl::math
