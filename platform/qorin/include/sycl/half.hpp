// sycl::half, the 16-bit floating-point type of IEEE 754.
//
// Arithmetic is done in float and rounded once. Float keeps more than twice half's digits, so the result is
// the correctly rounded one; the compiler's own 16-bit arithmetic may keep intermediate results in float.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <type_traits>

#include <sycl/bit_cast.hpp>

namespace sycl {

class half;

namespace detail {

/// The type in which half meets an arithmetic type T: half itself for integers, T for float and double.
template <typename T>
using half_meets =
    std::enable_if_t<std::is_arithmetic_v<T>, std::conditional_t<std::is_integral_v<T>, half, T>>;

} // namespace detail

class half {
 public:
  half() = default;
  template <typename T, std::enable_if_t<std::is_arithmetic_v<T>, int> = 0>
  constexpr half(T value) : value_(static_cast<_Float16>(value)) {}

  constexpr operator float() const { return static_cast<float>(value_); }

  static constexpr half from_bits(std::uint16_t bits) { return sycl::bit_cast<half>(bits); }

  friend constexpr half operator+(half a) { return a; }
  friend constexpr half operator-(half a) { return -static_cast<float>(a); }

#define QORIN_HALF_ARITHMETIC(op)                                                                            \
  friend constexpr half operator op(half a, half b) {                                                        \
    return static_cast<float>(a) op static_cast<float>(b);                                                   \
  }                                                                                                          \
  template <typename T>                                                                                      \
  friend constexpr detail::half_meets<T> operator op(half a, T b) {                                          \
    return static_cast<detail::half_meets<T>>(a) op static_cast<detail::half_meets<T>>(b);                   \
  }                                                                                                          \
  template <typename T>                                                                                      \
  friend constexpr detail::half_meets<T> operator op(T a, half b) {                                          \
    return static_cast<detail::half_meets<T>>(a) op static_cast<detail::half_meets<T>>(b);                   \
  }                                                                                                          \
  template <typename T>                                                                                      \
  friend constexpr half& operator op##=(half& a, T b) {                                                      \
    return a = static_cast<half>(a op b);                                                                    \
  }
  QORIN_HALF_ARITHMETIC(+)
  QORIN_HALF_ARITHMETIC(-)
  QORIN_HALF_ARITHMETIC(*)
  QORIN_HALF_ARITHMETIC(/)
#undef QORIN_HALF_ARITHMETIC

#define QORIN_HALF_COMPARISON(op)                                                                            \
  friend constexpr bool operator op(half a, half b) {                                                        \
    return static_cast<float>(a) op static_cast<float>(b);                                                   \
  }                                                                                                          \
  template <typename T, typename = detail::half_meets<T>>                                                    \
  friend constexpr bool operator op(half a, T b) {                                                           \
    return static_cast<detail::half_meets<T>>(a) op static_cast<detail::half_meets<T>>(b);                   \
  }                                                                                                          \
  template <typename T, typename = detail::half_meets<T>>                                                    \
  friend constexpr bool operator op(T a, half b) {                                                           \
    return static_cast<detail::half_meets<T>>(a) op static_cast<detail::half_meets<T>>(b);                   \
  }
  QORIN_HALF_COMPARISON(==)
  QORIN_HALF_COMPARISON(!=)
  QORIN_HALF_COMPARISON(<)
  QORIN_HALF_COMPARISON(>)
  QORIN_HALF_COMPARISON(<=)
  QORIN_HALF_COMPARISON(>=)
#undef QORIN_HALF_COMPARISON

  friend constexpr half& operator++(half& a) {
    return a += 1;
  }
  friend constexpr half& operator--(half& a) {
    return a -= 1;
  }
  friend constexpr half operator++(half& a, int) {
    const half before = a;
    ++a;
    return before;
  }
  friend constexpr half operator--(half& a, int) {
    const half before = a;
    --a;
    return before;
  }

 private:
  _Float16 value_;
};

} // namespace sycl

template <>
class std::numeric_limits<sycl::half> {
 public:
  static constexpr bool is_specialized = true;
  static constexpr bool is_signed = true;
  static constexpr bool is_integer = false;
  static constexpr bool is_exact = false;
  static constexpr bool is_iec559 = true;
  static constexpr bool is_bounded = true;
  static constexpr bool is_modulo = false;
  static constexpr bool traps = false;
  static constexpr bool tinyness_before = false;
  static constexpr bool has_infinity = true;
  static constexpr bool has_quiet_NaN = true;
  static constexpr bool has_signaling_NaN = true;
  static constexpr std::float_denorm_style has_denorm = std::denorm_present;
  static constexpr bool has_denorm_loss = false;
  static constexpr std::float_round_style round_style = std::round_to_nearest;
  static constexpr int radix = 2;
  static constexpr int digits = 11;
  static constexpr int digits10 = 3;
  static constexpr int max_digits10 = 5;
  static constexpr int min_exponent = -13;
  static constexpr int min_exponent10 = -4;
  static constexpr int max_exponent = 16;
  static constexpr int max_exponent10 = 4;
  static constexpr sycl::half min() noexcept { return sycl::half::from_bits(0x0400); }
  static constexpr sycl::half max() noexcept { return sycl::half::from_bits(0x7BFF); }
  static constexpr sycl::half lowest() noexcept { return sycl::half::from_bits(0xFBFF); }
  static constexpr sycl::half epsilon() noexcept { return sycl::half::from_bits(0x1400); }
  static constexpr sycl::half round_error() noexcept { return sycl::half::from_bits(0x3800); }
  static constexpr sycl::half infinity() noexcept { return sycl::half::from_bits(0x7C00); }
  static constexpr sycl::half quiet_NaN() noexcept { return sycl::half::from_bits(0x7E00); }
  static constexpr sycl::half signaling_NaN() noexcept { return sycl::half::from_bits(0x7D00); }
  static constexpr sycl::half denorm_min() noexcept { return sycl::half::from_bits(0x0001); }
};

template <>
struct std::hash<sycl::half> {
  std::size_t operator()(sycl::half value) const noexcept {
    return std::hash<float>{}(static_cast<float>(value)); // +0 and -0 are equal and must hash alike
  }
};
