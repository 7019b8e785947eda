// The common builtins, for floating point.
#pragma once

#include <sycl/builtins/elementwise.hpp>
#include <sycl/half.hpp>

namespace sycl {

#define QORIN_COMMON(T)                                                                                      \
  constexpr T max(T x, T y) {                                                                                \
    return x < y ? y : x;                                                                                    \
  }                                                                                                          \
  constexpr T min(T x, T y) {                                                                                \
    return y < x ? y : x;                                                                                    \
  }                                                                                                          \
  constexpr T clamp(T x, T low, T high) {                                                                    \
    return min(max(x, low), high);                                                                           \
  }                                                                                                          \
  constexpr T degrees(T radians) {                                                                           \
    return static_cast<T>(57.29577951308232087680) * radians;                                                \
  }                                                                                                          \
  constexpr T radians(T degrees) {                                                                           \
    return static_cast<T>(0.01745329251994329577) * degrees;                                                 \
  }                                                                                                          \
  constexpr T mix(T x, T y, T a) {                                                                           \
    return x + (y - x) * a;                                                                                  \
  }                                                                                                          \
  constexpr T step(T edge, T x) {                                                                            \
    return x < edge ? T(0) : T(1);                                                                           \
  }                                                                                                          \
  constexpr T smoothstep(T edge0, T edge1, T x) {                                                            \
    const T t = clamp(static_cast<T>((x - edge0) / (edge1 - edge0)), T(0), T(1));                            \
    return t * t * (T(3) - T(2) * t);                                                                        \
  }                                                                                                          \
  constexpr T sign(T x) {                                                                                    \
    return x > T(0) ? T(1) : x < T(0) ? T(-1) : x == T(0) ? x : T(0);                                        \
  }
QORIN_COMMON(float)
QORIN_COMMON(double)
QORIN_COMMON(half)
#undef QORIN_COMMON

QORIN_FLOATING_2(max)
QORIN_FLOATING_2(min)
QORIN_FLOATING_1_SCALAR(max)
QORIN_FLOATING_1_SCALAR(min)
QORIN_FLOATING_3(clamp)
QORIN_FLOATING_1(degrees)
QORIN_FLOATING_1(radians)
QORIN_FLOATING_3(mix)
QORIN_FLOATING_2(step)
QORIN_FLOATING_3(smoothstep)
QORIN_FLOATING_1(sign)

template <typename A, detail::if_floating<A> = 0>
constexpr detail::plain_t<A> clamp(const A& a, detail::element_t<A> low, detail::element_t<A> high) {
  return detail::elementwise<detail::plain_t<A>>([low, high](auto x) { return clamp(x, low, high); }, a);
}
template <typename A, typename B, detail::if_floating<A, B> = 0>
constexpr detail::plain_t<A> mix(const A& a, const B& b, detail::element_t<A> weight) {
  return detail::elementwise<detail::plain_t<A>>([weight](auto x, auto y) { return mix(x, y, weight); }, a,
                                                 b);
}
template <typename A, detail::if_floating<A> = 0>
constexpr detail::plain_t<A> step(detail::element_t<A> edge, const A& a) {
  return detail::elementwise<detail::plain_t<A>>([edge](auto x) { return step(edge, x); }, a);
}
template <typename A, detail::if_floating<A> = 0>
constexpr detail::plain_t<A> smoothstep(detail::element_t<A> edge0, detail::element_t<A> edge1, const A& a) {
  return detail::elementwise<detail::plain_t<A>>(
      [edge0, edge1](auto x) { return smoothstep(edge0, edge1, x); }, a);
}

} // namespace sycl
