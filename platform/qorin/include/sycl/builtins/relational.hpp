// The relational builtins. They answer bool for scalars, marray<bool> for marrays, and for vecs a vec of
// signed integers of the element's size in which -1 is true.
#pragma once

#include <type_traits>

#include <sycl/builtins/elementwise.hpp>
#include <sycl/half.hpp>

namespace sycl {

namespace detail {

template <typename A, bool IsVec = sequence<A>::is_vec>
struct relation_of {
  using type = sequence_of<A, same_size_int<element_t<A>>>;
};
template <typename A>
struct relation_of<A, false> {
  using type = sequence_of<A, bool>;
};
template <typename A>
using relation_t = typename relation_of<A>::type;

/// The element that a relation of A has for an answer.
template <typename A>
constexpr auto answer(bool yes) {
  if constexpr (sequence<A>::is_vec)
    return static_cast<same_size_int<element_t<A>>>(yes ? -1 : 0);
  else
    return yes;
}

template <typename T>
using bits_of =
    std::conditional_t<sizeof(T) == 1, std::uint8_t,
                       std::conditional_t<sizeof(T) == 2, std::uint16_t,
                                          std::conditional_t<sizeof(T) == 4, std::uint32_t, std::uint64_t>>>;

template <typename T>
inline constexpr T largest_v = std::numeric_limits<T>::max();

} // namespace detail

#define QORIN_RELATION_1(name, expression)                                                                   \
  template <typename T, detail::if_floating_scalar<T> = 0>                                                   \
  constexpr bool name(T x) {                                                                                 \
    return expression;                                                                                       \
  }                                                                                                          \
  template <typename A, detail::if_floating<A> = 0>                                                          \
  constexpr detail::relation_t<A> name(const A& a) {                                                         \
    return detail::elementwise<detail::relation_t<A>>([](auto x) { return detail::answer<A>(name(x)); }, a); \
  }
#define QORIN_RELATION_2(name, expression)                                                                   \
  template <typename T, detail::if_floating_scalar<T> = 0>                                                   \
  constexpr bool name(T x, T y) {                                                                            \
    return expression;                                                                                       \
  }                                                                                                          \
  template <typename A, typename B, detail::if_floating<A, B> = 0>                                           \
  constexpr detail::relation_t<A> name(const A& a, const B& b) {                                             \
    return detail::elementwise<detail::relation_t<A>>(                                                       \
        [](auto x, auto y) { return detail::answer<A>(name(x, y)); }, a, b);                                 \
  }
QORIN_RELATION_2(isequal, x == y)
QORIN_RELATION_2(isnotequal, x != y)
QORIN_RELATION_2(isgreater, x > y)
QORIN_RELATION_2(isgreaterequal, x >= y)
QORIN_RELATION_2(isless, x < y)
QORIN_RELATION_2(islessequal, x <= y)
QORIN_RELATION_2(islessgreater, x<y || x> y)
QORIN_RELATION_2(isordered, x == x && y == y)
QORIN_RELATION_2(isunordered, x != x || y != y)
QORIN_RELATION_1(isnan, x != x)
QORIN_RELATION_1(isinf, x > detail::largest_v<T> || x < -detail::largest_v<T>)
QORIN_RELATION_1(isfinite, x <= detail::largest_v<T> && x >= -detail::largest_v<T>)
QORIN_RELATION_1(isnormal,
                 isfinite(x) && (x >= std::numeric_limits<T>::min() || x <= -std::numeric_limits<T>::min()))
QORIN_RELATION_1(signbit, (sycl::bit_cast<detail::bits_of<T>>(x) >> (8 * sizeof(T) - 1)) != 0)
#undef QORIN_RELATION_1
#undef QORIN_RELATION_2

/// Whether the most significant bit of some element of a vec of integers is set, or some element of an
/// marray<bool> is true.
constexpr bool any(bool x) {
  return x;
}
constexpr bool all(bool x) {
  return x;
}

#define QORIN_QUANTIFIER(name, start, op)                                                                    \
  template <typename A, std::enable_if_t<detail::sequence<A>::value, int> = 0>                               \
  constexpr auto name(const A& a) {                                                                          \
    using T = detail::element_t<A>;                                                                          \
    static_assert(detail::sequence<A>::is_vec ? std::is_integral_v<T> && std::is_signed_v<T>                 \
                                              : std::is_same_v<T, bool>,                                     \
                  #name " takes a vec of signed integers or an marray of bool");                             \
    bool result = start;                                                                                     \
    for (int i = 0; i < detail::sequence<A>::count; ++i) {                                                   \
      if constexpr (detail::sequence<A>::is_vec)                                                             \
        result = result op(a[i] < 0);                                                                        \
      else                                                                                                   \
        result = result op a[i];                                                                             \
    }                                                                                                        \
    if constexpr (detail::sequence<A>::is_vec)                                                               \
      return static_cast<int>(result);                                                                       \
    else                                                                                                     \
      return result;                                                                                         \
  }
QORIN_QUANTIFIER(any, false, ||)
QORIN_QUANTIFIER(all, true, &&)
#undef QORIN_QUANTIFIER

/// Bits of b where c has ones, of a elsewhere.
template <typename T, std::enable_if_t<detail::is_floating_v<T> || std::is_integral_v<T>, int> = 0>
constexpr T bitselect(T a, T b, T c) {
  using bits = detail::bits_of<T>;
  const bits mask = sycl::bit_cast<bits>(c);
  return sycl::bit_cast<T>(static_cast<bits>((sycl::bit_cast<bits>(a) & static_cast<bits>(~mask)) |
                                             (sycl::bit_cast<bits>(b) & mask)));
}
template <typename A, typename B, typename C,
          std::enable_if_t<detail::is_same_sequence<A, B>() && detail::is_same_sequence<A, C>(), int> = 0>
constexpr detail::plain_t<A> bitselect(const A& a, const B& b, const C& c) {
  return detail::elementwise<detail::plain_t<A>>([](auto x, auto y, auto z) { return bitselect(x, y, z); }, a,
                                                 b, c);
}

/// b where c holds, a elsewhere; in a vec c holds where its element's most significant bit is set.
template <typename T, std::enable_if_t<detail::is_floating_v<T> || std::is_integral_v<T>, int> = 0>
constexpr T select(T a, T b, bool c) {
  return c ? b : a;
}
template <typename A, typename B, typename C,
          std::enable_if_t<detail::is_same_sequence<A, B>() && detail::sequence<C>::value, int> = 0>
constexpr detail::plain_t<A> select(const A& a, const B& b, const C& c) {
  using condition = detail::element_t<C>;
  static_assert(detail::sequence<A>::count == detail::sequence<C>::count &&
                    detail::sequence<A>::is_vec == detail::sequence<C>::is_vec,
                "select takes a condition of the values' kind and length");
  if constexpr (detail::sequence<A>::is_vec) {
    static_assert(std::is_integral_v<condition> && sizeof(condition) == sizeof(detail::element_t<A>),
                  "select takes a condition of integers of the values' size");
    return detail::elementwise<detail::plain_t<A>>(
        [](auto x, auto y, auto z) { return static_cast<detail::same_size_int<condition>>(z) < 0 ? y : x; },
        a, b, c);
  } else {
    static_assert(std::is_same_v<condition, bool>, "select on marrays takes an marray of bool");
    return detail::elementwise<detail::plain_t<A>>([](auto x, auto y, bool z) { return z ? y : x; }, a, b, c);
  }
}

} // namespace sycl
