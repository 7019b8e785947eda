// One uniform of two engine words, for laws whose tails go beyond 2^-32.
#pragma once

#include "../ops.hpp"

namespace hvl::math {

// `first` is a word scaled onto an interval in double, `second` another word scaled onto [0, 1]; cell is what one step of
// the first word is on its interval, the scale of its uniform_coefficients. Rounded once: 53 bits, and near 0 all that
// the two words have (2^-64 on [0, 1] for words of 32 bits, 2^-62 for mcg31m1, 2^-118 for mcg59).
template <class O>
HVL_MATH_INLINE typename O::value refined(typename O::value first, typename O::value second,
                                          typename O::scalar cell) {
  static_assert(sizeof(typename O::scalar) == 8);
  return O::fma(second, O::set(cell), first);
}

} // namespace hvl::math
