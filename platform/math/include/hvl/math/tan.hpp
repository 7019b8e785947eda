// Tangent.
#pragma once

#include "sincos.hpp"

namespace hvl::math {

// tan of an angle, |angle| <= 7. The numbers nearest to +-pi/2 lie just inside, so between them the tangent is finite.
template <class O>
HVL_MATH_INLINE typename O::value tan(typename O::value angle) {
  using L = detail::layout<typename O::scalar>;
  constexpr int to_sign = static_cast<int>(sizeof(typename O::scalar)) * 8 - 1;
  const detail::quarter_turn<O> t = detail::within_quarter<O>(angle);
  const auto one = O::set(typename O::scalar(1));
  const auto sine = t.sine_base + t.sine_rest;
  const auto sine_low = (t.sine_base - sine) + t.sine_rest;
  const auto cosine = O::fma(t.square, t.cosine_slope, one);
  const auto cosine_low = O::fma(t.square, t.cosine_slope, one - cosine);
  const auto odd = O::odd(t.quarters);
  const auto above = O::select(odd, cosine, sine);
  const auto above_low = O::select(odd, cosine_low, sine_low);
  const auto below = O::select(odd, sine, cosine);
  const auto below_low = O::select(odd, sine_low, cosine_low);
  // the quotient, then once improved with both low parts
  const auto reciprocal = one / below;
  const auto quotient = above * reciprocal;
  const auto minus_quotient = detail::negated<O>(quotient);
  const auto rest = O::fma(minus_quotient, below, above) + O::fma(minus_quotient, below_low, above_low);
  const auto ratio = O::fma(rest, reciprocal, quotient);
  const auto sign = O::template shift_left<to_sign>(t.quarters) & O::set_word(L::sign_mask);
  return O::from_bits(O::bits(ratio) ^ sign);
}

} // namespace hvl::math
