// Sine and cosine of angles up to a little more than a full turn.
#pragma once

#include "detail/arithmetic.hpp"

namespace hvl::math {
namespace detail {

// For |r| <= pi/4 and s = r^2: sin(r) = r + r s P(s), cos(r) = 1 + s (-1/2 + s Q(s)). pi/2 is high + low.
template <class T>
struct sincos_terms;

template <>
struct sincos_terms<float> {
  static constexpr float p[] = {-0x1.555546p-3f, 0x1.110778p-7f, -0x1.9954p-13f};
  static constexpr float q[] = {-0.5f, 0x1.55554ap-5f, -0x1.6c0c2ap-10f, 0x1.99e91p-16f};
  static constexpr float per_quarter = 0x1.45f306p-1f;
  static constexpr float high = 0x1.921fb6p+0f;
  static constexpr float low = -0x1.777a5cp-25f;
};

template <>
struct sincos_terms<double> {
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
  using T = typename O::scalar;
  using terms = sincos_terms<T>;
  const rounded<O> n = round_product<O>(angle, terms::per_quarter);
  const auto coarse = O::fma(n.value, O::set(-terms::high), angle); // exact
  const auto fine = n.value * O::set(-terms::low);
  const auto r = coarse + fine;
  // r is rounded: its square and the sum for the sine are formed of both parts
  const auto s = O::fma(coarse, coarse, (coarse + coarse) * fine);
  return {n.word, coarse, O::fma(r, s * polynomial<O>(s, terms::p), fine), s, polynomial<O>(s, terms::q)};
}

} // namespace detail

// sin and cos of an angle, |angle| <= 7.
template <class O>
HVL_MATH_INLINE void sincos(typename O::value angle, typename O::value& sine, typename O::value& cosine) {
  using L = detail::layout<typename O::scalar>;
  constexpr int to_sign = static_cast<int>(sizeof(typename O::scalar)) * 8 - 2; // from bit 1 to the sign bit
  const detail::quarter_turn<O> t = detail::within_quarter<O>(angle);
  const auto near_sine = t.sine_base + t.sine_rest;
  const auto near_cosine = O::fma(t.square, t.cosine_slope, O::set(typename O::scalar(1)));
  const auto odd = O::odd(t.quarters);
  const auto one = O::set_word(1);
  const auto sign = O::set_word(L::sign_mask);
  const auto sine_sign = O::template shift_left<to_sign>(t.quarters) & sign;
  const auto cosine_sign = O::template shift_left<to_sign>(t.quarters + one) & sign;
  sine = O::from_bits(O::bits(O::select(odd, near_cosine, near_sine)) ^ sine_sign);
  cosine = O::from_bits(O::bits(O::select(odd, near_sine, near_cosine)) ^ cosine_sign);
}

// sin of an angle, |angle| <= 7: the same number that sincos gives.
template <class O>
HVL_MATH_INLINE typename O::value sin(typename O::value angle) {
  typename O::value sine, cosine;
  sincos<O>(angle, sine, cosine);
  return sine;
}

} // namespace hvl::math
