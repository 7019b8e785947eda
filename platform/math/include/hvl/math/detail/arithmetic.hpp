// Pieces that several functions share.
#pragma once

#include <utility>

#include "../ops.hpp"

namespace hvl::math::detail {

// The layout of a floating-point type, and numbers of it that depend on the layout only.
template <class T>
struct layout;

template <>
struct layout<float> {
  static constexpr int mantissa_bits = 23;
  static constexpr std::uint32_t bias = 127;
  static constexpr std::uint32_t mantissa_mask = 0x007fffff;
  static constexpr std::uint32_t sign_mask = 0x80000000;
  static constexpr std::uint32_t one = 0x3f800000;
};

template <>
struct layout<double> {
  static constexpr int mantissa_bits = 52;
  static constexpr std::uint64_t bias = 1023;
  static constexpr std::uint64_t mantissa_mask = 0x000fffffffffffff;
  static constexpr std::uint64_t sign_mask = 0x8000000000000000;
  static constexpr std::uint64_t one = 0x3ff0000000000000;
};

// c[First] + c[First + Step] x + c[First + 2 Step] x^2 + ...; I counts the coefficients but the last.
template <class O, std::size_t First, std::size_t Step, std::size_t N, std::size_t... I>
HVL_MATH_INLINE typename O::value horner(typename O::value x, const typename O::scalar (&c)[N],
                                         std::index_sequence<I...>) {
  constexpr std::size_t last = First + sizeof...(I) * Step;
  static_assert(last < N && last + Step >= N);
  typename O::value sum = O::set(c[last]);
  ((sum = O::fma(sum, x, O::set(c[last - (I + 1) * Step]))), ...);
  return sum;
}

template <class O, std::size_t First, std::size_t Step, std::size_t N>
HVL_MATH_INLINE typename O::value every(typename O::value x, const typename O::scalar (&c)[N]) {
  return horner<O, First, Step>(x, c, std::make_index_sequence<(N - 1 - First) / Step>());
}

// c[0] + c[1] x + c[2] x^2 + ...
template <class O, std::size_t N>
HVL_MATH_INLINE typename O::value polynomial(typename O::value x, const typename O::scalar (&c)[N]) {
  return every<O, 0, 1>(x, c);
}

// The same given x2 = x * x, in several chains that do not wait for each other.
template <class O, std::size_t N>
HVL_MATH_INLINE typename O::value polynomial(typename O::value x, typename O::value x2,
                                             const typename O::scalar (&c)[N]) {
  if constexpr (N < 12) {
    return O::fma(every<O, 1, 2>(x2, c), x, every<O, 0, 2>(x2, c));
  } else {
    const auto x4 = x2 * x2;
    const auto low = O::fma(every<O, 1, 4>(x4, c), x, every<O, 0, 4>(x4, c));
    return O::fma(O::fma(every<O, 3, 4>(x4, c), x, every<O, 2, 4>(x4, c)), x2, low);
  }
}

// The polynomial whose coefficients are c[First], c[First + 1], ..., each at `index` of its row.
template <class O, std::size_t First, std::size_t Rows, std::size_t N, std::size_t... I>
HVL_MATH_INLINE typename O::value looked_up_polynomial(typename O::value x,
                                                       const typename O::scalar (&c)[Rows][N],
                                                       typename O::word index, std::index_sequence<I...>) {
  typename O::value sum = O::lookup(c[Rows - 1], index);
  ((sum = O::fma(sum, x, O::lookup(c[Rows - 2 - I], index))), ...);
  return sum;
}

template <class O>
HVL_MATH_INLINE typename O::value negated(typename O::value a) {
  return O::from_bits(O::bits(a) ^ O::set_word(layout<typename O::scalar>::sign_mask));
}

template <class O>
HVL_MATH_INLINE typename O::value magnitude(typename O::value a) {
  return O::from_bits(O::bits(a) & O::set_word(layout<typename O::scalar>::sign_mask - 1));
}

// A value and a word that belongs to it.
template <class O>
struct rounded {
  typename O::value value;
  typename O::word word;
};

// The integer nearest to x * scale, which is below 2^(mantissa_bits - 2) in magnitude. The bits above the integer in
// `word` are those of 1.5 * 2^mantissa_bits, rounding_word.
template <class T>
inline constexpr T rounding_value = T(3) * static_cast<T>(std::uint64_t{1} << (layout<T>::mantissa_bits - 1));

template <class O>
HVL_MATH_INLINE rounded<O> round_product(typename O::value x, typename O::scalar scale) {
  const auto shift = O::set(rounding_value<typename O::scalar>);
  const auto sum = O::fma(x, O::set(scale), shift);
  return {sum - shift, O::bits(sum)};
}

template <class T>
inline constexpr auto rounding_word = (layout<T>::bias + static_cast<unsigned>(layout<T>::mantissa_bits))
                                          << layout<T>::mantissa_bits
                                      | (layout<T>::mantissa_mask + 1) >> 1;

// x = 2^(exponent / exponent_unit) * mantissa for a positive normal x, mantissa in [least, 2 least), least given by its
// bits. In float the exponent keeps the place of its field, which saves moving it.
template <class O>
struct split {
  typename O::value exponent;
  typename O::value mantissa;
};

template <class T>
inline constexpr T exponent_unit = 1;
template <>
inline constexpr float exponent_unit<float> = 0x1p23f;

template <class T>
inline constexpr auto sqrt_half_bits = 0x3f3504f3u;
template <>
inline constexpr auto sqrt_half_bits<double> = std::uint64_t{0x3fe6a09e667f3bcd};

template <class O>
HVL_MATH_INLINE split<O> split_exponent(typename O::value x, typename O::bits_type least) {
  using T = typename O::scalar;
  using L = layout<T>;
  if constexpr (sizeof(T) == 4) {
    const auto field = (O::bits(x) - O::set_word(least)) & O::set_word(~L::mantissa_mask);
    return {O::signed_value(field), O::from_bits(O::bits(x) - field)};
  } else {
    constexpr auto integer_unit = (L::bias + static_cast<unsigned>(L::mantissa_bits))
                                  << L::mantissa_bits; // 2^mantissa_bits
    constexpr auto unbias = static_cast<T>((std::uint64_t{1} << L::mantissa_bits) + L::bias);
    const auto moved = O::bits(x) + O::set_word(L::one - least);
    const auto biased = O::template shift_right<L::mantissa_bits>(moved);
    return {O::from_bits(biased | O::set_word(integer_unit)) - O::set(unbias),
            O::from_bits((moved & O::set_word(L::mantissa_mask)) + O::set_word(least))};
  }
}

// ln 2 in two pieces: any exponent times the first is exact.
template <class T>
struct ln2;

template <>
struct ln2<float> {
  static constexpr float high = 0x1.62e4p-1f;
  static constexpr float low = 0x1.7f7d1cp-20f;
  static constexpr float whole = 0x1.62e43p-1f;
};

template <>
struct ln2<double> {
  static constexpr double high = 0x1.62e42fefa38p-1;
  static constexpr double low = 0x1.ef35793c7673p-45;
  static constexpr double whole = 0x1.62e42fefa39efp-1;
};

} // namespace hvl::math::detail
