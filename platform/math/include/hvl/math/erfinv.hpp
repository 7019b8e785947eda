// Inverse error function.
#pragma once

#include "detail/arithmetic.hpp"
#include "detail/erfinv_tables.hpp"

namespace hvl::math {

// erfinv(v) for |v| <= 1; for +-1 the value at the last number inside, 1 - 2^-24 (3.832507f) or 1 - 2^-53. In terms of
// y = 1 - |v| the function is smooth over each binade of y, so a polynomial for every binade, or quarter of one in
// double, does: no logarithm, no square root. Where y > 1/4 the polynomial is that of erfinv(v) / |v|.
template <class O>
HVL_MATH_INLINE typename O::value erfinv(typename O::value v) {
  using T = typename O::scalar;
  using L = detail::layout<T>;
  using table = detail::erfinv_table<T>;
  constexpr int piece_bits = table::pieces_per_binade == 4 ? 2 : 0;
  static_assert(1 << piece_bits == table::pieces_per_binade);
  constexpr auto within = L::mantissa_mask >> piece_bits;
  constexpr T last = static_cast<T>(sizeof(T) == 4 ? 0x1p-24 : 0x1p-53);

  const auto a = detail::magnitude<O>(v);
  const auto y = O::greater(O::set(T(1)) - a, O::set(last));
  const auto below_one = O::set_word(L::one) - O::bits(y);
  const auto piece = O::template shift_right<L::mantissa_bits - piece_bits>(below_one);
  const auto position =
      O::template shift_left<piece_bits>(below_one & O::set_word(within)) | O::set_word(L::one);
  const auto t = O::from_bits(position) - O::set(T(1.5));

  constexpr std::size_t terms = sizeof(table::c) / sizeof(table::c[0]);
  constexpr std::size_t constants = sizeof(T) == 4 ? 2 : 1;
  const auto slope = detail::looked_up_polynomial<O, constants>(
      t, table::c, piece, std::make_index_sequence<terms - constants - 1>());
  const auto base = O::lookup(table::c[0], piece);
  auto rest = t * slope;
  if constexpr (constants == 2)
    rest = O::fma(t, slope, O::lookup(table::c[1], piece));
  const auto factor = O::select(O::lt(O::set(T(0.25)), y), a, O::set(T(1)));
  const auto e = O::fma(factor, base, factor * rest);
  return O::from_bits(O::bits(e) | (O::bits(v) & O::set_word(L::sign_mask)));
}

} // namespace hvl::math
