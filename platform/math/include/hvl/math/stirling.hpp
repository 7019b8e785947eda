// What Stirling's formula leaves of the logarithm of a factorial.
#pragma once

#include "detail/arithmetic.hpp"

namespace hvl::math {
namespace detail {

// At 1, 2, ..., 8.
inline constexpr double stirling_table[] = {0x1.4c071bcda0a5bp-4, 0x1.52a9b923ea649p-5, 0x1.c579a268d80b3p-6,
                                            0x1.54a2662fd78a9p-6, 0x1.10b4e513fcbedp-6, 0x1.c6b167bebdf36p-7,
                                            0x1.85d4d612e4a86p-7, 0x1.552805e7b3076p-7};

// P(1 / n^2) / n from 8 on
inline constexpr double stirling_terms[] = {
    0x1.5555555555555p-4,  -0x1.6c16c16c10997p-9,  0x1.a01a015dd613ep-11, -0x1.3813320aa797p-11,
    0x1.b920e2feee993p-11, -0x1.ee6cb6acedee1p-10, 0x1.4676341471959p-8};

} // namespace detail

// ln (n - 1)! - ((n - 1/2) ln n - n + ln(2 pi) / 2) for an integer n from 1 on.
template <class O>
HVL_MATH_INLINE typename O::value stirling_correction(typename O::value n) {
  static_assert(sizeof(typename O::scalar) == 8);
  const auto eight = O::set(8.0);
  const auto integer_unit = O::set(0x1p52);
  const auto index = O::bits(O::lesser(n, eight) + integer_unit) - O::bits(integer_unit + O::set(1.0));
  const auto reciprocal = O::set(1.0) / n;
  const auto lost = reciprocal * O::fma(detail::negated<O>(reciprocal), n, O::set(1.0));
  const auto terms = detail::polynomial<O>(reciprocal * reciprocal, detail::stirling_terms);
  const auto series = O::fma(reciprocal, terms, lost * terms);
  return O::select(O::lt(n, eight), O::lookup(detail::stirling_table, index), series);
}

} // namespace hvl::math
