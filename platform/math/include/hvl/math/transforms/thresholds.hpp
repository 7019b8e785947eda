// Inversion of a discrete law by thresholds: the probabilities of exceeding its values, ascending, each below 1. The value
// of a uniform u is origin + step times the number of thresholds that are at most u; how they are counted changes nothing.
// As u nears 0 values go away from the origin's other end, so that end's probabilities are as fine as u is there.
#pragma once

#include "refined.hpp"
#include "words.hpp"

namespace hvl::math {

// Counts by halving; `count` thresholds.
HVL_MATH_INLINE std::uint32_t thresholds_passed(const double* thresholds, std::uint32_t count, double u) {
  std::uint32_t first = 0;
  while (count != 0) {
    const std::uint32_t half = count / 2;
    const bool passed = thresholds[first + half] <= u;
    first = passed ? first + half + 1 : first;
    count = passed ? count - half - 1 : half;
  }
  return first;
}

// Counts on from `passed`, which is not too many, one by one; behind the thresholds there is a number greater than 1.
HVL_MATH_INLINE std::uint32_t thresholds_passed_from(const double* thresholds, std::uint32_t passed,
                                                     double u) {
  while (thresholds[passed] <= u)
    ++passed;
  return passed;
}

} // namespace hvl::math
