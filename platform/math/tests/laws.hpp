// Words for tests of laws, and Kolmogorov's test of their values.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "hvl/math/philox.hpp"

namespace hvl::math {

inline constexpr double false_alarm = 1e-9;

template <std::size_t N>
void draw(std::uint32_t (&own)[N], std::uint32_t group, std::uint32_t seed) {
  for (std::uint32_t i = 0; i < N; ++i)
    own[i] = philox4x32x10_round_brute_10({{group, i / 4, 0, 0}}, seed, 0).word[i % 4];
}

// Words of 32 bits as the library scales them.
template <class T>
T symmetric(std::uint32_t word) {
  return static_cast<T>(static_cast<std::int32_t>(word)) * static_cast<T>(0x1p-31);
}
template <class T>
T unit(std::uint32_t word) {
  return static_cast<T>(static_cast<std::int32_t>(word)) * static_cast<T>(0x1p-32) + static_cast<T>(0.5);
}

// Kolmogorov's statistic exceeds the bound with the probability false_alarm (and Massart's factor 2 holds for every n).
inline double kolmogorov_bound(std::size_t n) {
  return std::sqrt(std::log(2 / false_alarm) / (2 * static_cast<double>(n)));
}

// The largest difference between the empirical and the exact distribution function, at some 4000 values.
template <class T, class Cdf>
double kolmogorov_statistic(std::vector<T> values, const Cdf& cdf) {
  std::sort(values.begin(), values.end());
  const auto n = static_cast<double>(values.size());
  double largest = 0;
  for (std::size_t i = 0; i < values.size(); i += 1 + values.size() / 4000) {
    const auto [first, last] = std::equal_range(values.begin(), values.end(), values[i]);
    // what rounds to a value lies between its neighbours
    const auto from = static_cast<double>(std::nextafter(values[i], T(0)));
    const auto to = static_cast<double>(std::nextafter(values[i], std::numeric_limits<T>::max()));
    largest = std::max({largest, static_cast<double>(last - values.begin()) / n - cdf(to),
                        cdf(from) - static_cast<double>(first - values.begin()) / n});
  }
  return largest;
}

} // namespace hvl::math
