// Values of a discrete law against its distribution function, in cells of at least 20 expected values.
#pragma once

#include <algorithm>
#include <cmath>
#include <functional>

#include "discrete.hpp"
#include "fit.hpp"

namespace hvl::streams::test {

using distribution_function = std::function<double(double)>;

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
  std::vector<std::uint64_t> counts(last.size() + 1);
  for (const std::int32_t value : values)
    ++counts[static_cast<std::size_t>(std::lower_bound(last.begin(), last.end(), value) - last.begin())];
  const auto cells = [&](const distribution_function& of) {
    std::vector<double> expected;
    double from = 0;
    for (const double k : last) {
      const double to = of(k);
      expected.push_back((to - from) * count);
      from = to;
    }
    expected.push_back((1 - from) * count);
    return expected;
  };
  expect_fit(chi_square(counts, cells(law)), counts.size());
  EXPECT_GT(chi_square(counts, cells(wrong)), critical_chi_square(counts.size())) << "a wrong law passes";
}

} // namespace hvl::streams::test
