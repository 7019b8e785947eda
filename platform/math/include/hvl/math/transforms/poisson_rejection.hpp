// The Poisson distribution by transformed rejection, PTRS of Hoermann's.
#pragma once

#include "transformed_rejection.hpp"

namespace hvl::math {

// Means from 10 on. Values beyond 2^31 - 1 are that number: of means from 2^31 + 2^19 on all are but with a probability
// below 2^-90, so means from 2^32 on are taken as 2^32.
HVL_MATH_INLINE rejection_law poisson_rejection_of(double mean) {
  using O = scalar_ops<double>;
  mean = O::lesser(mean, 0x1p32);
  rejection_law law{};
  law.factors = 1;
  law.b = O::fma(O::sqrt(mean), 2.53, 0.931);
  law.a = O::fma(law.b, 0.02483, -0.059);
  law.centre = mean + (0.43 - 0.5); // the author rounds down
  // the author's 0.9277 and 1.1328 leave the hat up to 0.5 % below the law at means up to 100
  law.squeeze = 0.92 - 3.6224 / (law.b - 2);
  const double alpha_inverse = 1.1239 + 1.2 / (law.b - 3.4);
  law.log_scale = log<O>(alpha_inverse * mean * 2.5066282746310002); // sqrt(2 pi)
  law.mode = static_cast<double>(static_cast<std::int64_t>(mean));
  law.greatest = 0x1p33;
  law.slope[0] = 1;
  law.offset[0] = 1;
  law.mean[0] = mean;
  return law;
}

} // namespace hvl::math
