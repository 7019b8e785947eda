// Sine and cosine of angles in turns.
#pragma once

#include "detail/arithmetic.hpp"

namespace hvl::math {
namespace detail {

// For |r| <= 1/8 and s = r^2: sin(2 pi r) = r high + r P(s), cos(2 pi r) = 1 + s Q(s). high is 2 pi to one number.
template <class T>
struct turn_terms;

template <>
struct turn_terms<float> {
  static constexpr float high = 0x1.921fb6p2f;
  static constexpr float p[] = {-0x1.a7c548p-23f, -0x1.4abbb8p5f, 0x1.465e46p6f, -0x1.2d8732p6f};
  static constexpr float q[] = {-0x1.3bd3ccp4f, 0x1.03c1b8p6f, -0x1.55b7cep6f, 0x1.d684acp5f};
};

template <>
struct turn_terms<double> {
  static constexpr double high = 0x1.921fb54442d18p2;
  static constexpr double p[] = {0x1.0365047bf370cp-52, -0x1.4abbce625be41p5, 0x1.466bc6775876fp6,
                                 -0x1.32d2cce2db83p6,   0x1.50782fcf94ab9p5,  -0x1.e30067edffd5bp3,
                                 0x1.e3f026ed8bd2cp1};
  static constexpr double q[] = {-0x1.3bd3cc9be45dep4, 0x1.03c1f081b5a67p6,  -0x1.55d3c7e3c325dp6,
                                 0x1.e1f5067b9115ep5,  -0x1.a6d1e729b9137p4, 0x1.f9c89d09c5e86p2,
                                 -0x1.b167544e7e837p0};
};

} // namespace detail

// sin(2 pi t) and cos(2 pi t), |t| <= 1. Counted in turns the angle is reduced exactly, and quarters give 0, 1 and -1.
template <class O>
HVL_MATH_INLINE void sincos_turns(typename O::value turns, typename O::value& sine,
                                  typename O::value& cosine) {
  using T = typename O::scalar;
  using terms = detail::turn_terms<T>;
  constexpr int to_sign = static_cast<int>(sizeof(T)) * 8 - 2; // from bit 1 to the sign bit
  constexpr auto sign_mask = detail::layout<T>::sign_mask;
  const detail::rounded<O> quarters = detail::round_product<O>(turns, T(4));
  const auto r = O::fma(quarters.value, O::set(T(-0.25)), turns); // exact
  const auto s = r * r;
  const auto near_sine = O::fma(r, O::set(terms::high), r * detail::polynomial<O>(s, terms::p));
  const auto near_cosine = O::fma(s, detail::polynomial<O>(s, terms::q), O::set(T(1)));
  const auto odd = O::odd(quarters.word);
  const auto sine_sign = O::template shift_left<to_sign>(quarters.word);
  const auto cosine_sign = sine_sign + O::set_word(sign_mask >> 1); // that of one quarter further
  sine = O::from_bits(O::bits(O::select(odd, near_cosine, near_sine)) ^ (sine_sign & O::set_word(sign_mask)));
  cosine =
      O::from_bits(O::bits(O::select(odd, near_sine, near_cosine)) ^ (cosine_sign & O::set_word(sign_mask)));
}

} // namespace hvl::math
