// The groups of benchmarks of this program.
#pragma once

#include <cstdio>
#include <string>

#include "sizes.hpp"

namespace bench {

inline constexpr double geometric_probabilities[] = {0.3, 0.1, 0.0001};

inline std::string geometric_name(double p) {
  char name[32];
  std::snprintf(name, sizeof name, "geometric_%g", p);
  return name;
}

inline constexpr double poisson_means[] = {1, 30, 1000, 1e8};

inline std::string poisson_name(double mean) {
  return "poisson_" + std::to_string(static_cast<int>(mean));
}

void register_distributions();
void register_distribution_peers();

} // namespace bench
