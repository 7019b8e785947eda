// How a builtin of scalars becomes one of vecs, of swizzles of vecs and of marrays.
#pragma once

#include <cstddef>
#include <type_traits>

#include <sycl/marray.hpp>
#include <sycl/multi_ptr.hpp>
#include <sycl/vec.hpp>

namespace sycl::detail {

/// For a vec, a swizzle or an marray A: the plain class of its value, its element type and length, and the
/// same class over another element type.
template <typename A>
struct sequence {
  static constexpr bool value = false;
};
template <typename T, int N>
struct sequence<vec<T, N>> {
  static constexpr bool value = true;
  static constexpr bool is_vec = true;
  static constexpr int count = N;
  using plain = vec<T, N>;
  using element = T;
  template <typename U>
  using of = vec<U, N>;
};
template <typename Result, typename Source, int... Indices>
struct sequence<vec_swizzle<Result, Source, Indices...>> : sequence<Result> {};
/// A view of one element counts as its value.
template <typename T>
struct sequence<vec_element<T>> {
  static constexpr bool value = true;
  static constexpr bool is_vec = false;
  static constexpr int count = 1;
  using plain = std::remove_const_t<T>;
  using element = plain;
  template <typename U>
  using of = U;
};
template <typename T, std::size_t N>
struct sequence<marray<T, N>> {
  static constexpr bool value = true;
  static constexpr bool is_vec = false;
  static constexpr int count = static_cast<int>(N);
  using plain = marray<T, N>;
  using element = T;
  template <typename U>
  using of = marray<U, N>;
};

template <typename A>
using plain_t = typename sequence<A>::plain;
template <typename A>
using element_t = typename sequence<A>::element;
template <typename A, typename U>
using sequence_of = typename sequence<A>::template of<U>;

template <typename T>
inline constexpr bool is_integer_v = std::is_integral_v<T> && !std::is_same_v<T, bool>;

template <typename A>
constexpr bool is_floating_sequence() {
  if constexpr (sequence<A>::value)
    return is_floating_v<element_t<A>>;
  else
    return false;
}
template <typename A>
constexpr bool is_integer_sequence() {
  if constexpr (sequence<A>::value)
    return is_integer_v<element_t<A>>;
  else
    return false;
}
template <typename A, typename B>
constexpr bool is_same_sequence() {
  if constexpr (sequence<A>::value && sequence<B>::value)
    return std::is_same_v<plain_t<A>, plain_t<B>>;
  else
    return false;
}

template <typename A, typename... Rest>
using if_floating = std::enable_if_t<is_floating_sequence<A>() && (is_same_sequence<A, Rest>() && ...), int>;
template <typename A, typename... Rest>
using if_integers = std::enable_if_t<is_integer_sequence<A>() && (is_same_sequence<A, Rest>() && ...), int>;
template <typename T>
using if_floating_scalar = std::enable_if_t<is_floating_v<T>, int>;
template <typename T>
using if_integer = std::enable_if_t<is_integer_v<T>, int>;

template <typename A>
constexpr auto element_at(const A& argument, int index) {
  if constexpr (sequence<A>::value)
    return static_cast<element_t<A>>(argument[index]);
  else
    return argument;
}

/// Result of f on the first elements, on the second ones, and so on.
template <typename Result, typename F, typename... A>
constexpr Result elementwise(F f, const A&... arguments) {
  if constexpr (sequence<Result>::value) {
    Result result{};
    for (int i = 0; i < sequence<Result>::count; ++i)
      result[i] = f(element_at(arguments, i)...);
    return result;
  } else {
    return f(element_at(arguments, 0)...);
  }
}

} // namespace sycl::detail

// A builtin over sequences from the scalar one of the same name, declared before: `floating` takes sequences
// of floating-point elements and gives the same, with one, two or three arguments.
#define QORIN_FLOATING_1(name)                                                                               \
  template <typename A, detail::if_floating<A> = 0>                                                          \
  constexpr detail::plain_t<A> name(const A& a) {                                                            \
    return detail::elementwise<detail::plain_t<A>>([](auto x) { return name(x); }, a);                       \
  }
#define QORIN_FLOATING_2(name)                                                                               \
  template <typename A, typename B, detail::if_floating<A, B> = 0>                                           \
  constexpr detail::plain_t<A> name(const A& a, const B& b) {                                                \
    return detail::elementwise<detail::plain_t<A>>([](auto x, auto y) { return name(x, y); }, a, b);         \
  }
#define QORIN_FLOATING_3(name)                                                                               \
  template <typename A, typename B, typename C, detail::if_floating<A, B, C> = 0>                            \
  constexpr detail::plain_t<A> name(const A& a, const B& b, const C& c) {                                    \
    return detail::elementwise<detail::plain_t<A>>([](auto x, auto y, auto z) { return name(x, y, z); }, a,  \
                                                   b, c);                                                    \
  }
// The same with a last argument that is one scalar for all elements.
#define QORIN_FLOATING_1_SCALAR(name)                                                                        \
  template <typename A, detail::if_floating<A> = 0>                                                          \
  constexpr detail::plain_t<A> name(const A& a, detail::element_t<A> b) {                                    \
    return detail::elementwise<detail::plain_t<A>>([b](auto x) { return name(x, b); }, a);                   \
  }
