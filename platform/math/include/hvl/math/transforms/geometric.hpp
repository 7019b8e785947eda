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

// Bounds on the quotient from the first word alone and in float, at a sixth of the cost: where their integer parts agree,
// it is that of geometric_icdf. Why they hold, in units of e = 2^-20:
//   The uniform of both words is u (1 + d) with d up to 1 / first word, e at most for the words admitted; the word's
//   conversion, the scale and the product put 2^-24 each to d. That moves log2 u by less than 1.72 e, whatever its size,
//   and the polynomial by 2.1 e. The margin is 5 e / |log2(1 - p)|.
//   The sum of exponent and polynomial, the scale and the last sum round by 2^-24 of the quotient each, and geometric_icdf
//   by less than 2^-48. The scales are e / 2 apart from the exact one.
struct geometric_margins {
  float least_scale, greatest_scale;
  float margin;
};

inline constexpr float geometric_least_word = 0x1p20f;

// Where the first word is admitted, a value is in doubt with a probability of 8 e / |ln(1 - p)|: 0.8 % here. No quotient
// reaches 2^16.
inline constexpr double geometric_greatest_scale_for_float = 1024;

HVL_MATH_INLINE geometric_margins geometric_margins_of(double scale) {
  const double of_log2 = scale * 0.6931471805599453;
  return {static_cast<float>(of_log2 * (1 - 0x1p-21)), static_cast<float>(of_log2 * (1 + 0x1p-21)),
          static_cast<float>(of_log2 * (-5 * 0x1p-20))};
}

namespace detail {

// log2(3/4 + t) on (-1/4, 1/4]
inline constexpr float rough_log2_terms[] = {-0x1.a8ff72p-2f, 0x1.ec73d6p0f, -0x1.48592ap0f, 0x1.223cecp0f,
                                             -0x1.20408ap0f,  0x1.67df72p0f, -0x1.a505c4p0f};

// log2 u of a positive normal u, with an absolute error below 2.1 e and a relative one of 2^-24.
template <class O>
HVL_MATH_INLINE typename O::value rough_log2(typename O::value u) {
  constexpr auto above_half = layout<float>::one - (layout<float>::mantissa_mask + 1) + 1;
  const split<O> s = split_exponent<O>(u, above_half);
  const auto t = s.mantissa - O::set(0.75f);
  return O::fma(s.exponent, O::set(1 / exponent_unit<float>), polynomial<O>(t, t * t, rough_log2_terms));
}

} // namespace detail

template <class O>
struct geometric_bounds {
  typename O::value least; // from -1/2 on
  typename O::value greatest;
};

// u is the first word, at least geometric_least_word, converted to float and scaled onto [0, 1].
template <class O>
HVL_MATH_INLINE geometric_bounds<O> geometric_bounds_of(typename O::value u, const geometric_margins& m) {
  static_assert(sizeof(typename O::scalar) == 4);
  const auto logarithm = detail::rough_log2<O>(u);
  return {O::fma(logarithm, O::set(m.least_scale), O::set(-m.margin)),
          O::fma(logarithm, O::set(m.greatest_scale), O::set(m.margin))};
}

} // namespace hvl::math
