// Tangent.
#pragma once

#include "detail/arithmetic.hpp"

namespace hvl::math {
namespace detail {

// For |r| <= pi/4 and s = r^2: sin(r) = r + r s P(s), cos(r) = 1 + s (-1/2 + s Q(s)). pi/2 is high + low.
struct quarter_terms {
  static constexpr double p[] = {-0x1.5555555555548p-3, 0x1.111111110f75ep-7,   -0x1.a01a019bf2523p-13,
                                 0x1.71de355f3628cp-19, -0x1.ae5e549c421c4p-26, 0x1.5d8e4234a0139p-33};
  static constexpr double q[] = {-0.5,
                                 0x1.555555555554bp-5,
                                 -0x1.6c16c16c15017p-10,
                                 0x1.a01a019c8f66bp-16,
                                 -0x1.27e4f7f1c1054p-22,
                                 0x1.1ee9dbec7010ap-29,
                                 -0x1.8fa6917123386p-37};
  static constexpr double per_quarter = 0x1.45f306dc9c883p-1;
  static constexpr double high = 0x1.921fb54442d18p+0;
  static constexpr double low = 0x1.1a62633145c07p-54;
};

// An angle less a number of quarter turns, the number in the low bits of a word. The sine is sine_base + sine_rest, the
// cosine 1 + cosine_rest.
template <class O>
struct quarter_turn {
  typename O::word quarters;
  typename O::value sine_base;
  typename O::value sine_rest;
  typename O::value square;
  typename O::value cosine_slope; // cosine_rest = square * cosine_slope
};

template <class O>
HVL_MATH_INLINE quarter_turn<O> within_quarter(typename O::value angle) {
  using terms = quarter_terms;
  const rounded<O> n = round_product<O>(angle, terms::per_quarter);
  const auto coarse = O::fma(n.value, O::set(-terms::high), angle); // exact
  const auto fine = n.value * O::set(-terms::low);
  const auto r = coarse + fine;
  // r is rounded: its square and the sum for the sine are formed of both parts
  const auto s = O::fma(coarse, coarse, (coarse + coarse) * fine);
  return {n.word, coarse, O::fma(r, s * polynomial<O>(s, terms::p), fine), s, polynomial<O>(s, terms::q)};
}

} // namespace detail

// tan of an angle, |angle| <= 7, in double. The numbers nearest to +-pi/2 lie just inside, so between them the tangent is
// finite.
template <class O>
HVL_MATH_INLINE typename O::value tan(typename O::value angle) {
  static_assert(sizeof(typename O::scalar) == 8);
  using L = detail::layout<double>;
  constexpr int to_sign = 63;
  const detail::quarter_turn<O> t = detail::within_quarter<O>(angle);
  const auto one = O::set(1.0);
  const auto sine = t.sine_base + t.sine_rest;
  const auto sine_low = (t.sine_base - sine) + t.sine_rest;
  const auto cosine = O::fma(t.square, t.cosine_slope, one);
  const auto cosine_low = O::fma(t.square, t.cosine_slope, one - cosine);
  const auto odd = O::odd(t.quarters);
  const auto above = O::select(odd, cosine, sine);
  const auto above_low = O::select(odd, cosine_low, sine_low);
  const auto below = O::select(odd, sine, cosine);
  const auto below_low = O::select(odd, sine_low, cosine_low);
  // the quotient, then once improved with both low parts
  const auto reciprocal = one / below;
  const auto quotient = above * reciprocal;
  const auto minus_quotient = detail::negated<O>(quotient);
  const auto rest = O::fma(minus_quotient, below, above) + O::fma(minus_quotient, below_low, above_low);
  const auto ratio = O::fma(rest, reciprocal, quotient);
  const auto sign = O::template shift_left<to_sign>(t.quarters) & O::set_word(L::sign_mask);
  return O::from_bits(O::bits(ratio) ^ sign);
}

} // namespace hvl::math
