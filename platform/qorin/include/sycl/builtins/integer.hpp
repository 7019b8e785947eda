// The integer builtins. What SYCL leaves to wrap, wraps: it is computed in the unsigned type.
#pragma once

#include <cstdint>
#include <limits>
#include <type_traits>

#include <sycl/builtins/elementwise.hpp>

namespace sycl {

namespace detail {

template <typename T>
inline constexpr int bits_v = static_cast<int>(8 * sizeof(T));

template <typename T>
using unsigned_t = std::make_unsigned_t<T>;

/// The integer type of twice T's size and the same signedness.
template <typename T>
struct doubled;
template <typename T>
using doubled_t = typename doubled<T>::type;
__extension__ typedef __int128 int128;
__extension__ typedef unsigned __int128 uint128;
template <typename T>
struct doubled {
  using signed_type =
      std::conditional_t<sizeof(T) == 1, std::int16_t,
                         std::conditional_t<sizeof(T) == 2, std::int32_t,
                                            std::conditional_t<sizeof(T) == 4, std::int64_t, int128>>>;
  using unsigned_type =
      std::conditional_t<sizeof(T) == 1, std::uint16_t,
                         std::conditional_t<sizeof(T) == 2, std::uint32_t,
                                            std::conditional_t<sizeof(T) == 4, std::uint64_t, uint128>>>;
  using type = std::conditional_t<std::is_signed_v<T>, signed_type, unsigned_type>;
};

/// The integer of the next size, for upsample.
template <typename T>
using upsampled_t = std::enable_if_t<(sizeof(T) < 8), doubled_t<T>>;

template <typename T>
constexpr T saturated(doubled_t<T> value) {
  constexpr auto low = static_cast<doubled_t<T>>(std::numeric_limits<T>::min());
  constexpr auto high = static_cast<doubled_t<T>>(std::numeric_limits<T>::max());
  return static_cast<T>(value < low ? low : value > high ? high : value);
}

} // namespace detail

template <typename T, detail::if_integer<T> = 0>
constexpr T abs(T x) {
  using u = detail::unsigned_t<T>;
  return x < T(0) ? static_cast<T>(static_cast<u>(u(0) - static_cast<u>(x))) : x;
}

/// |x - y|, which the unsigned type always holds.
template <typename T, detail::if_integer<T> = 0>
constexpr T abs_diff(T x, T y) {
  using u = detail::unsigned_t<T>;
  return static_cast<T>(
      static_cast<u>(x < y ? static_cast<u>(y) - static_cast<u>(x) : static_cast<u>(x) - static_cast<u>(y)));
}

template <typename T, detail::if_integer<T> = 0>
constexpr T add_sat(T x, T y) {
  T sum = 0;
  if (!__builtin_add_overflow(x, y, &sum))
    return sum;
  return x < T(0) ? std::numeric_limits<T>::min() : std::numeric_limits<T>::max();
}

template <typename T, detail::if_integer<T> = 0>
constexpr T sub_sat(T x, T y) {
  T difference = 0;
  if (!__builtin_sub_overflow(x, y, &difference))
    return difference;
  return x < y ? std::numeric_limits<T>::min() : std::numeric_limits<T>::max();
}

/// (x + y) / 2 rounded down, without overflow.
template <typename T, detail::if_integer<T> = 0>
constexpr T hadd(T x, T y) {
  return static_cast<T>((x & y) + ((x ^ y) >> 1));
}

/// (x + y) / 2 rounded up, without overflow.
template <typename T, detail::if_integer<T> = 0>
constexpr T rhadd(T x, T y) {
  return static_cast<T>((x | y) - ((x ^ y) >> 1));
}

template <typename T, detail::if_integer<T> = 0>
constexpr T max(T x, T y) {
  return x < y ? y : x;
}

template <typename T, detail::if_integer<T> = 0>
constexpr T min(T x, T y) {
  return y < x ? y : x;
}

template <typename T, detail::if_integer<T> = 0>
constexpr T clamp(T x, T low, T high) {
  return min(max(x, low), high);
}

template <typename T, detail::if_integer<T> = 0>
constexpr T popcount(T x) {
  return static_cast<T>(__builtin_popcountll(static_cast<detail::unsigned_t<T>>(x)));
}

/// Leading zero bits; all of them for 0.
template <typename T, detail::if_integer<T> = 0>
constexpr T clz(T x) {
  const auto bits = static_cast<detail::unsigned_t<T>>(x);
  return static_cast<T>(bits == 0 ? detail::bits_v<T> : __builtin_clzll(bits) - (64 - detail::bits_v<T>));
}

/// Trailing zero bits; all of them for 0.
template <typename T, detail::if_integer<T> = 0>
constexpr T ctz(T x) {
  const auto bits = static_cast<detail::unsigned_t<T>>(x);
  return static_cast<T>(bits == 0 ? detail::bits_v<T> : __builtin_ctzll(bits));
}

/// The bits of x moved left by `count` modulo the width, those that leave coming in on the right.
template <typename T, detail::if_integer<T> = 0>
constexpr T rotate(T x, T count) {
  using u = detail::unsigned_t<T>;
  const auto bits = static_cast<u>(x);
  const int left = static_cast<int>(static_cast<u>(count) % u(detail::bits_v<T>));
  const int right = (detail::bits_v<T> - left) % detail::bits_v<T>;
  return static_cast<T>(static_cast<u>(static_cast<u>(bits << left) | (bits >> right)));
}

template <typename T, detail::if_integer<T> = 0>
constexpr T mul_hi(T x, T y) {
  using wide = detail::doubled_t<T>;
  return static_cast<T>((static_cast<wide>(x) * static_cast<wide>(y)) >> detail::bits_v<T>);
}

template <typename T, detail::if_integer<T> = 0>
constexpr T mad_hi(T a, T b, T c) {
  using u = detail::unsigned_t<T>;
  return static_cast<T>(static_cast<u>(static_cast<u>(mul_hi(a, b)) + static_cast<u>(c)));
}

template <typename T, detail::if_integer<T> = 0>
constexpr T mad_sat(T a, T b, T c) {
  using wide = detail::doubled_t<T>; // the largest product leaves room for the largest addend
  return detail::saturated<T>(
      static_cast<wide>(static_cast<wide>(a) * static_cast<wide>(b) + static_cast<wide>(c)));
}

/// The low 32 bits of a product of two 24-bit numbers.
template <typename T, detail::if_integer<T> = 0>
constexpr T mul24(T x, T y) {
  static_assert(sizeof(T) == 4, "mul24 is for 32-bit integers");
  return static_cast<T>(static_cast<std::uint32_t>(x) * static_cast<std::uint32_t>(y));
}

template <typename T, detail::if_integer<T> = 0>
constexpr T mad24(T x, T y, T z) {
  return static_cast<T>(static_cast<std::uint32_t>(mul24(x, y)) + static_cast<std::uint32_t>(z));
}

/// The integer of twice the width with high and low as its halves.
template <typename T, detail::if_integer<T> = 0>
constexpr detail::upsampled_t<T> upsample(T high, detail::unsigned_t<T> low) {
  using u = detail::unsigned_t<detail::upsampled_t<T>>;
  return static_cast<detail::upsampled_t<T>>(
      static_cast<u>(static_cast<u>(static_cast<u>(high) << detail::bits_v<T>) | low));
}

#define QORIN_INTEGER_1(name)                                                                                \
  template <typename A, detail::if_integers<A> = 0>                                                          \
  constexpr detail::plain_t<A> name(const A& a) {                                                            \
    return detail::elementwise<detail::plain_t<A>>([](auto x) { return name(x); }, a);                       \
  }
#define QORIN_INTEGER_2(name)                                                                                \
  template <typename A, typename B, detail::if_integers<A, B> = 0>                                           \
  constexpr detail::plain_t<A> name(const A& a, const B& b) {                                                \
    return detail::elementwise<detail::plain_t<A>>([](auto x, auto y) { return name(x, y); }, a, b);         \
  }
#define QORIN_INTEGER_3(name)                                                                                \
  template <typename A, typename B, typename C, detail::if_integers<A, B, C> = 0>                            \
  constexpr detail::plain_t<A> name(const A& a, const B& b, const C& c) {                                    \
    return detail::elementwise<detail::plain_t<A>>([](auto x, auto y, auto z) { return name(x, y, z); }, a,  \
                                                   b, c);                                                    \
  }
QORIN_INTEGER_1(abs)
QORIN_INTEGER_1(popcount)
QORIN_INTEGER_1(clz)
QORIN_INTEGER_1(ctz)
QORIN_INTEGER_2(abs_diff)
QORIN_INTEGER_2(add_sat)
QORIN_INTEGER_2(sub_sat)
QORIN_INTEGER_2(hadd)
QORIN_INTEGER_2(rhadd)
QORIN_INTEGER_2(max)
QORIN_INTEGER_2(min)
QORIN_INTEGER_2(rotate)
QORIN_INTEGER_2(mul_hi)
QORIN_INTEGER_2(mul24)
QORIN_INTEGER_3(clamp)
QORIN_INTEGER_3(mad_hi)
QORIN_INTEGER_3(mad_sat)
QORIN_INTEGER_3(mad24)
#undef QORIN_INTEGER_1
#undef QORIN_INTEGER_2
#undef QORIN_INTEGER_3

template <typename A, detail::if_integers<A> = 0>
constexpr detail::plain_t<A> max(const A& a, detail::element_t<A> b) {
  return detail::elementwise<detail::plain_t<A>>([b](auto x) { return max(x, b); }, a);
}
template <typename A, detail::if_integers<A> = 0>
constexpr detail::plain_t<A> min(const A& a, detail::element_t<A> b) {
  return detail::elementwise<detail::plain_t<A>>([b](auto x) { return min(x, b); }, a);
}
template <typename A, detail::if_integers<A> = 0>
constexpr detail::plain_t<A> clamp(const A& a, detail::element_t<A> low, detail::element_t<A> high) {
  return detail::elementwise<detail::plain_t<A>>([low, high](auto x) { return clamp(x, low, high); }, a);
}
template <typename A, typename B, detail::if_integers<A> = 0, detail::if_integers<B> = 0>
constexpr auto upsample(const A& high, const B& low)
    -> detail::sequence_of<A, decltype(upsample(detail::element_t<A>(), detail::element_t<B>()))> {
  using element = decltype(upsample(detail::element_t<A>(), detail::element_t<B>()));
  static_assert(std::is_same_v<detail::sequence_of<A, detail::element_t<B>>, detail::plain_t<B>> &&
                    std::is_same_v<detail::unsigned_t<detail::element_t<A>>, detail::element_t<B>>,
                "upsample takes high and unsigned low halves of one kind");
  return detail::elementwise<detail::sequence_of<A, element>>([](auto h, auto l) { return upsample(h, l); },
                                                              high, low);
}

} // namespace sycl
