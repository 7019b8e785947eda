// Conversion of one element under a rounding mode, for vec::convert.
#pragma once

#include <cstdint>
#include <type_traits>

#include <sycl/bit_cast.hpp>
#include <sycl/half.hpp>

namespace sycl {

/// `automatic` is toward zero for floating point to integer and to nearest even for all else.
enum class rounding_mode : int { automatic, rte, rtz, rtp, rtn };

namespace detail {

template <typename T>
inline constexpr bool is_floating_v = std::is_floating_point_v<T> || std::is_same_v<T, half>;

/// The neighbour of a finite or infinite value, upward or downward.
template <typename T>
constexpr T neighbour(T value, bool upward) {
  using bits_type = std::conditional_t<sizeof(T) == 2, std::uint16_t,
                                       std::conditional_t<sizeof(T) == 4, std::uint32_t, std::uint64_t>>;
  constexpr bits_type sign = bits_type(1) << (8 * sizeof(T) - 1);
  if (value == T(0))
    return sycl::bit_cast<T>(static_cast<bits_type>(upward ? 1 : sign | 1));
  const bits_type bits = sycl::bit_cast<bits_type>(value);
  const bool away_from_zero = (value > T(0)) == upward;
  return sycl::bit_cast<T>(static_cast<bits_type>(away_from_zero ? bits + 1 : bits - 1));
}

#define QORIN_TO_INTEGRAL(mode, function)                                                                    \
  if constexpr (Mode == rounding_mode::mode) {                                                               \
    if constexpr (std::is_same_v<T, float>)                                                                  \
      return __builtin_##function##f(value);                                                                 \
    else                                                                                                     \
      return __builtin_##function(value);                                                                    \
  }
/// What conversion to an integer, which truncates, has to start from.
template <rounding_mode Mode, typename T>
constexpr T rounded_to_integral(T value) {
  QORIN_TO_INTEGRAL(rte, rint)
  QORIN_TO_INTEGRAL(rtp, ceil)
  QORIN_TO_INTEGRAL(rtn, floor)
  return value;
}
#undef QORIN_TO_INTEGRAL

template <typename To, rounding_mode Mode, typename From>
constexpr To convert_element(const From& value) {
  if constexpr (is_floating_v<From> && std::is_integral_v<To> && !std::is_same_v<To, bool>) {
    using wide = std::conditional_t<std::is_same_v<From, double>, double, float>;
    return static_cast<To>(rounded_to_integral<Mode>(static_cast<wide>(value)));
  } else if constexpr (is_floating_v<To> && Mode != rounding_mode::automatic && Mode != rounding_mode::rte) {
    const To nearest = static_cast<To>(value);
    // The 64-bit significand of long double holds every element type exactly, so the comparison is exact.
    static_assert(std::numeric_limits<long double>::digits >= 64);
    const auto exact = static_cast<long double>(value);
    const auto got = static_cast<long double>(nearest);
    const bool downward = Mode == rounding_mode::rtn || (Mode == rounding_mode::rtz && exact > 0);
    if (downward ? got > exact : got < exact)
      return neighbour(nearest, !downward);
    return nearest;
  } else {
    return static_cast<To>(value);
  }
}

} // namespace detail
} // namespace sycl
