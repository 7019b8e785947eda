// The geometric distribution: failures before the first success.
#pragma once

#include "../log.hpp"
#include "refined.hpp"

namespace hvl::math {

// What the host forms once for geometric_icdf: 1 / ln(1 - p) for p in (0, 1]; of p = 1 it is -0, and every value 0.
HVL_MATH_INLINE double geometric_scale(double p) {
  return p < 1 ? 1 / log1p<scalar_ops<double>>(-p) : -0.0;
}

// floor(ln u / ln(1 - p)) before the fraction is cut off, at most the greatest int32. u lies in [0, 1], both ends
// included, and is refined(): the tail is exact down to probabilities of 2^-59 and less.
template <class O>
HVL_MATH_INLINE typename O::value geometric_icdf(typename O::value u, double scale) {
  static_assert(sizeof(typename O::scalar) == 8);
  return O::lesser(log_guarded<O>(u) * O::set(scale), O::set(2147483647.0));
}

} // namespace hvl::math
