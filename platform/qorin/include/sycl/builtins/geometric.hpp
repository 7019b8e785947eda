// The geometric builtins, for scalars and for sequences of two to four elements.
#pragma once

#include <sycl/builtins/math.hpp>

namespace sycl {

namespace detail {

template <typename A>
constexpr bool is_geometric() {
  if constexpr (is_floating_sequence<A>())
    return sequence<A>::count >= 2 && sequence<A>::count <= 4;
  else
    return false;
}
template <typename A, typename... Rest>
using if_geometric = std::enable_if_t<is_geometric<A>() && (is_same_sequence<A, Rest>() && ...), int>;

} // namespace detail

template <typename A, typename B, detail::if_geometric<A, B> = 0>
constexpr detail::element_t<A> dot(const A& a, const B& b) {
  detail::element_t<A> sum = a[0] * b[0];
  for (int i = 1; i < detail::sequence<A>::count; ++i)
    sum = sum + a[i] * b[i];
  return sum;
}

namespace detail {

/// The scale by which |elements| come near 1, a power of two, so that squares neither overflow nor vanish.
/// 1 where no scaling helps.
template <typename A>
element_t<A> norm_scale(const A& a) {
  using T = element_t<A>;
  T largest = fabs(a[0]);
  for (int i = 1; i < sequence<A>::count; ++i)
    largest = fmax(largest, fabs(a[i]));
  if (!(largest > T(0)) || largest > std::numeric_limits<T>::max())
    return T(1);
  const int exponent = ilogb(largest);
  return ldexp(T(1), exponent > std::numeric_limits<T>::max_exponent - 2 ? exponent - 1 : exponent);
}

} // namespace detail

template <typename A, detail::if_geometric<A> = 0>
detail::element_t<A> length(const A& a) {
  const auto scale = detail::norm_scale(a);
  const detail::plain_t<A> scaled = static_cast<const detail::plain_t<A>&>(a) / scale;
  return sqrt(dot(scaled, scaled)) * scale;
}

/// The vector of length 1 in the same direction; all zeros give themselves.
template <typename A, detail::if_geometric<A> = 0>
detail::plain_t<A> normalize(const A& a) {
  using T = detail::element_t<A>;
  const detail::plain_t<A> scaled = static_cast<const detail::plain_t<A>&>(a) / detail::norm_scale(a);
  const T norm = sqrt(dot(scaled, scaled));
  return norm == T(0) ? scaled : scaled / norm;
}

template <typename A, typename B, detail::if_geometric<A, B> = 0>
detail::element_t<A> distance(const A& a, const B& b) {
  return length(static_cast<const detail::plain_t<A>&>(a) - static_cast<const detail::plain_t<B>&>(b));
}

/// Of the first three elements; a fourth one of the result is 0.
template <typename A, typename B, detail::if_geometric<A, B> = 0>
constexpr detail::plain_t<A> cross(const A& a, const B& b) {
  static_assert(detail::sequence<A>::count >= 3, "cross takes three or four elements");
  using T = detail::element_t<A>;
  detail::plain_t<A> result(T(0));
  for (int i = 0; i < 3; ++i) {
    const int j = (i + 1) % 3;
    const int k = (i + 2) % 3;
    result[i] = a[j] * b[k] - a[k] * b[j];
  }
  return result;
}

#define QORIN_GEOMETRIC_SCALAR(T)                                                                            \
  constexpr T dot(T a, T b) {                                                                                \
    return a * b;                                                                                            \
  }                                                                                                          \
  inline T length(T a) {                                                                                     \
    return fabs(a);                                                                                          \
  }                                                                                                          \
  inline T distance(T a, T b) {                                                                              \
    return fabs(static_cast<T>(a - b));                                                                      \
  }                                                                                                          \
  inline T normalize(T a) {                                                                                  \
    return a > T(0) ? T(1) : a < T(0) ? T(-1) : a;                                                           \
  }
QORIN_GEOMETRIC_SCALAR(float)
QORIN_GEOMETRIC_SCALAR(double)
QORIN_GEOMETRIC_SCALAR(half)
#undef QORIN_GEOMETRIC_SCALAR

inline float fast_length(float a) {
  return length(a);
}
inline float fast_distance(float a, float b) {
  return distance(a, b);
}
inline float fast_normalize(float a) {
  return normalize(a);
}

/// The fast forms do not guard the squares against overflow and underflow.
template <typename A, detail::if_geometric<A> = 0>
float fast_length(const A& a) {
  static_assert(std::is_same_v<detail::element_t<A>, float>, "the fast builtins are for float");
  return sqrt(dot(a, a));
}
template <typename A, typename B, detail::if_geometric<A, B> = 0>
float fast_distance(const A& a, const B& b) {
  return fast_length(static_cast<const detail::plain_t<A>&>(a) - static_cast<const detail::plain_t<B>&>(b));
}
template <typename A, detail::if_geometric<A> = 0>
detail::plain_t<A> fast_normalize(const A& a) {
  const float norm = fast_length(a);
  const detail::plain_t<A> value = a;
  return norm == 0.0f ? value : value / norm;
}

} // namespace sycl
