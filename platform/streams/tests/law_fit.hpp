// Values of a discrete law against its distribution function, in cells of at least 20 expected values, and neighbours against
// each other.
#pragma once

#include <algorithm>
#include <cmath>
#include <functional>

#include "discrete.hpp"
#include "fit.hpp"

namespace hvl::streams::test {

// Added up from the ratios of neighbouring probabilities, far beyond what is seen of it.
inline distribution_function hypergeometric_law(double l, double s, double m) {
  const double mean = s * m / l, deviation = std::sqrt(mean * (l - m) / l * (l - s) / (l - 1));
  const double first = std::max({0.0, s + m - l, std::floor(mean - 14 * deviation)});
  const double last = std::min({s, m, std::ceil(mean + 14 * deviation)});
  std::vector<long double> sums;
  long double logarithm = 0, sum = 0;
  for (double k = first; k <= last; ++k) {
    sums.push_back(sum += std::exp(logarithm - 100));
    logarithm += std::log((static_cast<long double>(m) - k) * (static_cast<long double>(s) - k) /
                          ((k + 1) * (static_cast<long double>(l) - m - s + k + 1)));
  }
  return [=](double k) {
    return k < first ? 0.0
                     : static_cast<double>(sums[static_cast<std::size_t>(std::min(k, last) - first)] / sum);
  };
}

// `wrong` is one that has to be told from the law.
inline void check_law(std::int32_t engine, std::size_t n, double mean, double deviation,
                      const distribution_function& law, const distribution_function& wrong,
                      const generator& generate) {
  const auto values = generated(owned_stream(engine), n, generate);
  const auto count = static_cast<double>(n);
  std::vector<double> last; // of each cell but the last
  const double step = std::max(1.0, std::floor(deviation / 8));
  double below = 0;
  for (double k = std::max(0.0, std::floor(mean - 6 * deviation)); k < mean + 6 * deviation + 3; k += step) {
    const double up_to = law(k);
    if ((up_to - below) * count >= 20 && (1 - up_to) * count >= 20) {
      last.push_back(k);
      below = up_to;
    }
  }
  ASSERT_FALSE(last.empty());
  std::vector<std::uint32_t> cell_of;
  std::vector<std::uint64_t> counts(last.size() + 1);
  for (const std::int32_t value : values) {
    const auto cell = std::lower_bound(last.begin(), last.end(), value) - last.begin();
    cell_of.push_back(static_cast<std::uint32_t>(cell));
    ++counts[static_cast<std::size_t>(cell)];
  }
  const auto cells = [&](const distribution_function& of, double all) {
    std::vector<double> expected;
    double from = 0;
    for (const double k : last) {
      const double to = of(k);
      expected.push_back((to - from) * all);
      from = to;
    }
    expected.push_back((1 - from) * all);
    return expected;
  };
  expect_fit(chi_square(counts, cells(law, count)), counts.size());
  EXPECT_GT(chi_square(counts, cells(wrong, count)), critical_chi_square(counts.size()))
      << "a wrong law passes";
  expect_independent_neighbours(cell_of, cells(law, 1));
}

} // namespace hvl::streams::test
