// native:: and half_precision::, the builtins that may trade accuracy for speed. The host has nothing faster
// of its own for them, so they are as accurate as the plain ones.
#pragma once

#include <sycl/builtins/math.hpp>

namespace sycl {

namespace detail {
template <typename A>
constexpr bool is_float_sequence() {
  if constexpr (sequence<A>::value)
    return std::is_same_v<element_t<A>, float>;
  else
    return false;
}
template <typename A, typename... Rest>
using if_floats = std::enable_if_t<is_float_sequence<A>() && (is_same_sequence<A, Rest>() && ...), int>;
} // namespace detail

#define QORIN_AS_PLAIN_1(name)                                                                               \
  inline float name(float x) {                                                                               \
    return sycl::name(x);                                                                                    \
  }                                                                                                          \
  template <typename A, detail::if_floats<A> = 0>                                                            \
  detail::plain_t<A> name(const A& a) {                                                                      \
    return sycl::name(a);                                                                                    \
  }
#define QORIN_AS_PLAIN_2(name)                                                                               \
  inline float name(float x, float y) {                                                                      \
    return sycl::name(x, y);                                                                                 \
  }                                                                                                          \
  template <typename A, typename B, detail::if_floats<A, B> = 0>                                             \
  detail::plain_t<A> name(const A& a, const B& b) {                                                          \
    return sycl::name(a, b);                                                                                 \
  }
#define QORIN_FAST_BUILTINS                                                                                  \
  QORIN_AS_PLAIN_1(cos)                                                                                      \
  QORIN_AS_PLAIN_1(exp)                                                                                      \
  QORIN_AS_PLAIN_1(exp2)                                                                                     \
  QORIN_AS_PLAIN_1(exp10)                                                                                    \
  QORIN_AS_PLAIN_1(log)                                                                                      \
  QORIN_AS_PLAIN_1(log2)                                                                                     \
  QORIN_AS_PLAIN_1(log10)                                                                                    \
  QORIN_AS_PLAIN_2(powr)                                                                                     \
  QORIN_AS_PLAIN_1(rsqrt)                                                                                    \
  QORIN_AS_PLAIN_1(sin)                                                                                      \
  QORIN_AS_PLAIN_1(sqrt)                                                                                     \
  QORIN_AS_PLAIN_1(tan)                                                                                      \
  inline float divide(float x, float y) {                                                                    \
    return x / y;                                                                                            \
  }                                                                                                          \
  inline float recip(float x) {                                                                              \
    return 1.0f / x;                                                                                         \
  }                                                                                                          \
  template <typename A, typename B, detail::if_floats<A, B> = 0>                                             \
  detail::plain_t<A> divide(const A& a, const B& b) {                                                        \
    return static_cast<const detail::plain_t<A>&>(a) / static_cast<const detail::plain_t<B>&>(b);            \
  }                                                                                                          \
  template <typename A, detail::if_floats<A> = 0>                                                            \
  detail::plain_t<A> recip(const A& a) {                                                                     \
    return 1.0f / static_cast<const detail::plain_t<A>&>(a);                                                 \
  }

namespace native {
QORIN_FAST_BUILTINS
} // namespace native

namespace half_precision {
QORIN_FAST_BUILTINS
} // namespace half_precision

#undef QORIN_FAST_BUILTINS
#undef QORIN_AS_PLAIN_1
#undef QORIN_AS_PLAIN_2

} // namespace sycl
