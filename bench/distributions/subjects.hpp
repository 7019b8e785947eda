// The groups of benchmarks of this program.
#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "sizes.hpp"

namespace bench {

inline constexpr double geometric_probabilities[] = {0.3, 0.1, 0.0001};

inline std::string geometric_name(double p) {
  char name[32];
  std::snprintf(name, sizeof name, "geometric_%g", p);
  return name;
}

inline constexpr int vector_dimension = 8, vector_elements = vector_dimension * (vector_dimension + 1) / 2;

inline constexpr int chi_square_degrees[] = {1, 5};

inline std::string chi_square_name(int v) {
  return "chi_square_" + std::to_string(v);
}

// Both shapes above 1, one of them below, both small; large ones.
struct beta_shapes {
  double p, q;
};
inline constexpr beta_shapes beta_cases[] = {{2.5, 1.5}, {0.7, 3}, {0.3, 0.4}, {1e7, 2e7}};

inline std::string beta_name(beta_shapes s) {
  char name[48];
  std::snprintf(name, sizeof name, "beta_%g_%g", s.p, s.q);
  return name;
}

inline constexpr double poisson_means[] = {1, 30, 1000, 1e8};

inline std::string poisson_name(double mean) {
  return "poisson_" + std::to_string(static_cast<int>(mean));
}

struct trials {
  const char* name;
  std::int32_t count;
  double p;
};
inline constexpr trials binomial_trials[] = {
    {"binomial_20_0.3", 20, 0.3}, {"binomial_1000_0.4", 1000, 0.4}, {"binomial_1e9_0.3", 1000000000, 0.3}};

// Of eight outcomes, whose probabilities are one to eight parts of 36.
struct counted {
  const char* name;
  std::int32_t count;
};
inline constexpr counted multinomial_trials[] = {
    {"multinomial_20", 20}, {"multinomial_1000", 1000}, {"multinomial_1e6", 1000000}};
inline constexpr int outcomes = 8;

inline std::vector<double> outcome_probabilities() {
  std::vector<double> p;
  for (int i = 1; i <= outcomes; ++i)
    p.push_back(i / 36.0);
  return p;
}

struct sample {
  const char* name;
  std::int32_t lot, size, marked;
};
inline constexpr sample hypergeometric_samples[] = {
    {"hypergeometric_100", 100, 30, 40}, {"hypergeometric_2e9", 2000000000, 1000000000, 700000000}};

struct successes {
  const char* name;
  double count, p;
};
inline constexpr successes negative_binomial_successes[] = {{"negative_binomial_2.5_0.1", 2.5, 0.1},
                                                            {"negative_binomial_2.5_0.001", 2.5, 0.001}};

void register_distributions();
void register_distribution_peers();

} // namespace bench
