// What a distribution's numbers follow in theory.
#pragma once

#include "catalogue.hpp"

#include <functional>

namespace hvl_rng {

struct exact_law {
  // The density at a real value; of integers, the probability of each. Zero outside the support, which spans
  // [lower, upper], infinite where the distribution has no end.
  std::function<double(double)> density;
  double lower, upper;
  bool is_discrete;
};

// Throws `failure` for parameters that the distribution refuses, and where no law is known.
exact_law find_law(const distribution_entry& distribution, const parameter_values& parameters);

} // namespace hvl_rng
