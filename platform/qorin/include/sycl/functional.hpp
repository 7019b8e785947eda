// Function objects of group functions and reductions, and the identities that are known for them.
#pragma once

#include <limits>
#include <type_traits>
#include <utility>

namespace sycl {

#define QORIN_FUNCTION_OBJECT(name, expression)                                                              \
  template <class T = void>                                                                                  \
  struct name {                                                                                              \
    constexpr auto operator()(const T& a, const T& b) const { return expression; }                           \
  };                                                                                                         \
  template <>                                                                                                \
  struct name<void> {                                                                                        \
    template <class T, class U>                                                                              \
    constexpr auto operator()(const T& a, const U& b) const {                                                \
      return expression;                                                                                     \
    }                                                                                                        \
  }

QORIN_FUNCTION_OBJECT(plus, a + b);
QORIN_FUNCTION_OBJECT(multiplies, a* b);
QORIN_FUNCTION_OBJECT(bit_and, a& b);
QORIN_FUNCTION_OBJECT(bit_or, a | b);
QORIN_FUNCTION_OBJECT(bit_xor, a ^ b);
QORIN_FUNCTION_OBJECT(logical_and, a&& b);
QORIN_FUNCTION_OBJECT(logical_or, a || b);
QORIN_FUNCTION_OBJECT(minimum, b < a ? b : a);
QORIN_FUNCTION_OBJECT(maximum, a < b ? b : a);
#undef QORIN_FUNCTION_OBJECT

namespace detail {

template <template <class> class Operator, class Op, class T>
inline constexpr bool is_operator = std::is_same_v<Op, Operator<T>> || std::is_same_v<Op, Operator<void>>;

struct no_identity {};

template <class Op, class T>
constexpr auto identity_of() {
  if constexpr (!std::is_arithmetic_v<T>) {
    return no_identity{};
  } else if constexpr (is_operator<plus, Op, T>) {
    return T(0);
  } else if constexpr (is_operator<multiplies, Op, T>) {
    return T(1);
  } else if constexpr (std::is_integral_v<T> && is_operator<bit_and, Op, T>) {
    return static_cast<T>(~T(0));
  } else if constexpr (std::is_integral_v<T> && (is_operator<bit_or, Op, T> || is_operator<bit_xor, Op, T>)) {
    return T(0);
  } else if constexpr (std::is_same_v<T, bool> && is_operator<logical_and, Op, T>) {
    return true;
  } else if constexpr (std::is_same_v<T, bool> && is_operator<logical_or, Op, T>) {
    return false;
  } else if constexpr (is_operator<minimum, Op, T>) {
    using limits = std::numeric_limits<T>;
    return limits::has_infinity ? limits::infinity() : limits::max();
  } else if constexpr (is_operator<maximum, Op, T>) {
    using limits = std::numeric_limits<T>;
    return limits::has_infinity ? static_cast<T>(-limits::infinity()) : limits::lowest();
  } else {
    return no_identity{};
  }
}

} // namespace detail

template <class BinaryOperation, class T>
struct has_known_identity
    : std::bool_constant<
          !std::is_same_v<decltype(detail::identity_of<std::decay_t<BinaryOperation>, std::decay_t<T>>()),
                          detail::no_identity>> {};
template <class BinaryOperation, class T>
inline constexpr bool has_known_identity_v = has_known_identity<BinaryOperation, T>::value;

template <class BinaryOperation, class T>
struct known_identity {
  static_assert(has_known_identity_v<BinaryOperation, T>, "no identity is known for this operation and type");
  static constexpr std::decay_t<T> value =
      detail::identity_of<std::decay_t<BinaryOperation>, std::decay_t<T>>();
};
template <class BinaryOperation, class T>
inline constexpr T known_identity_v = known_identity<BinaryOperation, T>::value;

} // namespace sycl
