// Counting a sample into bars that can be laid beside its exact law.
#pragma once

#include "exact_law.hpp"

#include <vector>

namespace hvl_rng {

// The share of the sample in [low, high) divided by high - low. A bar of integers reaches half a unit beyond
// its first and last, so that the same quotient is the share of one integer.
struct bar {
  double low, high, height;
};

// Covers what is worth seeing: all but the rarest values, no more than a few quartile distances from the
// median (a heavy tail would squeeze everything else into one bar), and up to the support's end where that is
// near. Shares are of the whole sample. Throws `failure` where the sample has no spread.
std::vector<bar> make_histogram(std::vector<double> sample, const exact_law& law);

} // namespace hvl_rng
