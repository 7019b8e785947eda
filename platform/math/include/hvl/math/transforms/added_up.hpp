// Inversion of a discrete law on 0, 1, 2, ... by adding up its probabilities, for one that nothing is prepared for.
#pragma once

#include "../exp.hpp"

namespace hvl::math::detail {

template <class O>
struct added_up_number {
  typename O::value k;
  typename O::value sum; // the probability of at most k
};

// The least number whose sum exceeds u, or the last one that has more than 2^-60 of the probability. `p` is that of 0, and
// ratio(k, next) what the one of next = k + 1 is to the one of k; it is read where lanes go on, whose k is next - 1.
template <class O, class Ratio>
HVL_MATH_INLINE added_up_number<O> added_up(typename O::value p, typename O::value u, const Ratio& ratio) {
  const auto zero = O::set(0.0), one = O::set(1.0), least = O::set(0x1p-60);
  auto sum = p, k = zero;
  for (double next = 1;; ++next) {
    const auto following = p * ratio(k, next);
    p = O::select(O::lt(u, sum), zero, O::select(O::lt(least, following), following, zero));
    const auto goes_on = O::lt(zero, p);
    if (!O::any(goes_on))
      return {k, sum};
    k = k + O::select(goes_on, one, zero);
    sum = sum + p;
  }
}

} // namespace hvl::math::detail
