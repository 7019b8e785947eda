// The hypergeometric distribution by transformed rejection. Like the binomial one it is a sum of independent indicators
// (its generating function has real zeros only), and the two differ in units of the deviation by its inverse; the hat of
// the binomial has that much to spare at deviations from 30 on.
#pragma once

#include "binomial_rejection.hpp"

namespace hvl::math {

// Marked ones in a sample from a lot, with a deviation of at least 30.
HVL_MATH_INLINE rejection_law hypergeometric_rejection_of(std::int32_t lot, std::int32_t sample,
                                                          std::int32_t marked) {
  const double l = lot;
  const double s = sample;
  const double m = marked;
  const double p = m / l;
  const double q = (l - m) / l;
  rejection_law law{};
  law.factors = 4;
  law.centre = s * p;
  law.mode =
      static_cast<double>((std::int64_t{sample} + 1) * (std::int64_t{marked} + 1) / (std::int64_t{lot} + 2));
  law.least = s + m > l ? s + m - l : 0.0;
  law.greatest = s < m ? s : m;
  // marked and not, in the sample and left
  law.slope[0] = law.slope[3] = 1;
  law.slope[1] = law.slope[2] = -1;
  law.offset[0] = 1;
  law.offset[1] = s + 1;
  law.offset[2] = m + 1;
  law.offset[3] = l - m - s + 1;
  law.mean[0] = s * p;
  law.mean[1] = s * q;
  law.mean[2] = (l - s) * p;
  law.mean[3] = (l - s) * q;
  const double deviation = scalar_ops<double>::sqrt(s * p * q * ((l - s) / (l - 1)));
  detail::set_binomial_hat<scalar_ops<double>>(law, deviation, p < q ? p : q);
  return law;
}

} // namespace hvl::math
