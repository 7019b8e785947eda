// How an engine's word becomes a value of the uniform family: one definition for the scalar host path and for
// device kernels, which must give the same bits. Compile with floating-point contraction off: the product and
// the sum of uniform_value are rounded separately.
#pragma once

#include <cstdint>
#include <type_traits>

namespace hvl::streams {

// What an engine's word is. signed32: 32 random bits, read as signed. unsigned32: a fraction in units of 2^-32. mcg31m1:
// [1, 2^31 - 1). mrg32k3a: [1, 2^32 - 209]. mcg59: [1, 2^59), in 64 bits.
enum class word_scale { signed32, mcg31m1, mrg32k3a, mcg59, unsigned32 };

// value = T(word) * scale + shift
template <class T>
struct coefficients {
  T scale;
  T shift;
};

// The coefficients that carry words onto [a, b), each operation rounded in T.
template <class T>
constexpr coefficients<T> uniform_coefficients(word_scale words, T a, T b) {
  static_assert(std::is_floating_point_v<T>);
  switch (words) {
  case word_scale::mcg31m1:
    return {(b - a) * static_cast<T>(1.0 / 2147483647.0), a};
  case word_scale::mrg32k3a:
    return {(b - a) * static_cast<T>(1.0 / 4294967088.0), a};
  case word_scale::mcg59:
    return {(b - a) * static_cast<T>(1.0 / 576460752303423488.0), a};
  case word_scale::unsigned32:
    return {(b - a) * static_cast<T>(1.0 / 4294967296.0), a};
  case word_scale::signed32:
    break;
  }
  return {(b - a) * static_cast<T>(1.0 / 4294967296.0), (b + a) * static_cast<T>(0.5)};
}

// Word is std::int32_t for word_scale::signed32, std::uint64_t for mcg59, std::uint32_t for all others. The conversion
// rounds once, to nearest even.
template <class T, class Word>
constexpr T uniform_value(Word word, coefficients<T> c) {
  const T product = static_cast<T>(word) * c.scale;
  return product + c.shift;
}

template <class T>
constexpr T clamp_to(T value, T low, T high) {
  const T raised = value > low ? value : low;
  return raised < high ? raised : high;
}

// The least and the greatest value on [a, b): for integers b - 1, for the accurate method of reals b itself.
template <class T>
struct value_range {
  T low;
  T high;
};
template <class T>
constexpr value_range<T> values_on(T a, T b) {
  if constexpr (std::is_integral_v<T>)
    return {a, b - 1};
  else
    return {a, b};
}

// The least and the greatest values of T that Integer (32 bits) represents.
template <class Integer, class T>
inline constexpr T lowest_of = std::is_signed_v<Integer> ? static_cast<T>(-2147483648.0) : static_cast<T>(0);
template <class Integer, class T>
inline constexpr T highest_of = std::is_same_v<T, float>
                                    ? (std::is_signed_v<Integer> ? static_cast<T>(2147483520.0)
                                                                 : static_cast<T>(4294967040.0))
                                    : (std::is_signed_v<Integer> ? static_cast<T>(2147483647.0)
                                                                 : static_cast<T>(4294967295.0));

// floor, saturated at lowest_of and highest_of, as an Integer. (A rint after floor changes nothing.)
template <class Integer, class T>
constexpr Integer floor_to(T value) {
  static_assert(sizeof(Integer) == 4);
  const T clamped = clamp_to(value, lowest_of<Integer, T>, highest_of<Integer, T>);
  const Integer truncated = static_cast<Integer>(clamped);
  if constexpr (std::is_signed_v<Integer>)
    return truncated - static_cast<Integer>(static_cast<T>(truncated) > clamped);
  else
    return truncated;
}

// An integer result: the floor, where rounding took it out of the range the nearest value within. T has 24 or 53 bits,
// so both ends may be passed.
template <class Integer, class T>
constexpr Integer integer_value(T value, value_range<Integer> range) {
  return clamp_to(floor_to<Integer>(value), range.low, range.high);
}

} // namespace hvl::streams
