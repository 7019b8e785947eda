// Natural logarithm.
#pragma once

#include "detail/arithmetic.hpp"

namespace hvl::math {
namespace detail {

// log(1 + f) = f + f^2 P(f) for 1 + f in [sqrt(1/2), sqrt(2)].
template <class T>
struct log_terms;

template <>
struct log_terms<float> {
  static constexpr float p[] = {-0x1.fffff8p-2f, 0x1.55555p-2f,   -0x1.000432p-2f,
                                0x1.99a41ap-3f,  -0x1.5425c4p-3f, 0x1.226dfcp-3f,
                                -0x1.0f3faap-3f, 0x1.0860d2p-3f,  -0x1.384708p-4f};
};

template <>
struct log_terms<double> {
  static constexpr double p[] = {
      -0x1.0000000000003p-1, 0x1.555555555551cp-2, -0x1.fffffffffdedcp-3, 0x1.99999999a17e5p-3,
      -0x1.55555556e2a14p-3, 0x1.249249224694ap-3, -0x1.fffffef68fb5cp-4, 0x1.c71c71d81085bp-4,
      -0x1.9999c90c8f925p-4, 0x1.745d452490538p-4, -0x1.5550741f56b26p-4, 0x1.3b0ac8c703744p-4,
      -0x1.24dc4e7dfd6cfp-4, 0x1.11d829d7f8eedp-4, -0x1.fb6e29caff696p-5, 0x1.cfb6bd9ed4a97p-5,
      -0x1.d15ae3f87fe79p-5, 0x1.0b553c9c8485bp-4, -0x1.eb43b15bd75c3p-5, 0x1.abdeb0d935e63p-6};
};

} // namespace detail

// Logarithm of a positive normal number. Other arguments give no meaningful result.
template <class O>
HVL_MATH_INLINE typename O::value log(typename O::value x) {
  using T = typename O::scalar;
  const detail::split<O> s = detail::split_exponent<O>(x);
  const auto f = s.mantissa - O::set(T(1));
  const auto series = (f * f) * detail::polynomial<O>(f, detail::log_terms<T>::p);
  const auto tail = O::fma(s.exponent, O::set(detail::ln2<T>::low), series);
  const auto head = O::fma(s.exponent, O::set(detail::ln2<T>::high), f);
  if constexpr (sizeof(T) == 8)
    return head + tail;
  // what rounding took from head: without it the error would pass one ulp
  const auto lost = O::fma(s.exponent, O::set(detail::ln2<T>::high), detail::negated<O>(head)) + f;
  return head + (lost + tail);
}

// The logarithm of the smallest positive subnormal number.
template <class T>
inline constexpr T log_of_zero = T(-103.27893);
template <>
inline constexpr double log_of_zero<double> = -744.4400719213812;

// log(x), and log_of_zero for 0; NaN stays NaN. x is 0, positive and normal, or NaN.
template <class O>
HVL_MATH_INLINE typename O::value log_guarded(typename O::value x) {
  using T = typename O::scalar;
  return O::select(O::lt(O::set(T(0)), x), log<O>(x), O::set(log_of_zero<T>) + x);
}

} // namespace hvl::math
