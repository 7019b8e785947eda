// The Poisson distribution by transformed rejection, PTRS of Hoermann's.
#pragma once

#include "transformed_rejection.hpp"

namespace hvl::math {

// Means from 10 on. Values beyond 2^31 - 1 are that number: of means from 2^31 + 2^19 on all are but with a probability
// below 2^-90, so means from 2^32 on are taken as 2^32.
template <class O>
HVL_MATH_INLINE rejection_law_of<typename O::value> poisson_rejection_of(typename O::value mean) {
  mean = O::lesser(mean, O::set(0x1p32));
  rejection_law_of<typename O::value> law{};
  law.factors = 1;
  law.b = O::fma(O::sqrt(mean), O::set(2.53), O::set(0.931));
  law.a = O::fma(law.b, O::set(0.02483), O::set(-0.059));
  law.centre = mean + O::set(0.43 - 0.5); // the author rounds down
  // the author's 0.9277 and 1.1328 leave the hat up to 0.5 % below the law at means up to 100
  law.squeeze = O::set(0.92) - O::set(3.6224) / (law.b - O::set(2.0));
  const auto alpha_inverse = O::set(1.1239) + O::set(1.2) / (law.b - O::set(3.4));
  law.log_scale = log<O>(alpha_inverse * mean * O::set(2.5066282746310002)); // sqrt(2 pi)
  law.mode = detail::rounded_down<O>(mean);
  law.least = O::set(0.0);
  law.greatest = O::set(0x1p33);
  law.slope[0] = O::set(1.0);
  law.offset[0] = O::set(1.0);
  law.mean[0] = mean;
  return law;
}

HVL_MATH_INLINE rejection_law poisson_rejection_of(double mean) {
  return poisson_rejection_of<scalar_ops<double>>(mean);
}

} // namespace hvl::math
