// What the tests of fit share: chi-square, its critical value, and what all comparisons of a program may cost. Streams
// are fixed, so a verdict never changes from run to run; over all seeds each comparison would fail by chance with
// probability `alarm`, and every program checks at its end that all of its comparisons together stay below `all_alarms`.
#pragma once

#include <boost/math/distributions/chi_squared.hpp>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <vector>

namespace hvl::streams::test {

inline constexpr double alarm = 1e-8;
inline constexpr double all_alarms = 4e-5;

class comparisons : public ::testing::Environment {
 public:
  static void count() { ++made_; }
  void TearDown() override { EXPECT_LE(static_cast<double>(made_) * alarm, all_alarms) << made_; }

 private:
  static inline std::size_t made_ = 0;
};
inline ::testing::Environment* const counted = ::testing::AddGlobalTestEnvironment(new comparisons);

// Of `counts` against the expected counts, in step.
inline double chi_square(const std::vector<std::uint64_t>& counts, const std::vector<double>& expected) {
  double sum = 0;
  for (std::size_t i = 0; i < counts.size(); ++i)
    sum += (static_cast<double>(counts[i]) - expected[i]) * (static_cast<double>(counts[i]) - expected[i]) /
           expected[i];
  return sum;
}

inline double critical_chi_square(std::size_t bins) {
  const boost::math::chi_squared law(static_cast<double>(bins - 1));
  return boost::math::quantile(boost::math::complement(law, alarm));
}

inline void expect_fit(double chi_square, std::size_t bins) {
  comparisons::count();
  EXPECT_LT(chi_square, critical_chi_square(bins));
}

using distribution_function = std::function<double(double)>;

// At most `count` cells of about equal probability, found by halving the interval from `low`, below which nothing lies, to
// `high`, above which nothing does; of integers the cells end at integers.
class law_cells {
 public:
  law_cells(const distribution_function& law, std::size_t count, double low, double high, bool integers) {
    double below = 0;
    for (std::size_t i = 1; i < count; ++i) {
      const double share = static_cast<double>(i) / static_cast<double>(count);
      double from = low, to = high;
      for (int halvings = 0; halvings < 100; ++halvings) {
        const double half = from + (to - from) / 2, at = integers ? std::floor(half) : half;
        if (at <= from || at >= to)
          break;
        (law(at) < share ? from : to) = at;
      }
      const double up_to = law(to), least = 0.2 / static_cast<double>(count);
      if (up_to - below < least || 1 - up_to < least)
        continue;
      last_.push_back(to);
      probability_.push_back(up_to - below);
      below = up_to;
    }
    probability_.push_back(1 - below);
  }
  std::size_t operator()(double x) const {
    return static_cast<std::size_t>(std::lower_bound(last_.begin(), last_.end(), x) - last_.begin());
  }
  std::size_t count() const { return probability_.size(); }
  const std::vector<double>& probability() const { return probability_; }

 private:
  std::vector<double> last_, probability_;
};

// Values by their cells: pairs of neighbours, none of them in two pairs, on a grid of at most eight groups of cells either way.
// Nothing is told where the rarest pair is expected less than 20 times. Against a control: pairs of which every twentieth
// repeats a value.
inline void expect_independent_neighbours(const std::vector<std::uint32_t>& cells,
                                          const std::vector<double>& probability) {
  constexpr std::size_t most = 8;
  std::vector<std::size_t> group;
  std::vector<double> share;
  double below = 0;
  std::size_t before = most;
  for (const double p : probability) {
    const auto now = std::min(most - 1, static_cast<std::size_t>(most * (below + p / 2)));
    if (now != before)
      share.push_back(0);
    before = now;
    group.push_back(share.size() - 1);
    share.back() += p;
    below += p;
  }
  const std::size_t groups = share.size(), pairs = cells.size() / 2;
  const double rarest = *std::min_element(share.begin(), share.end());
  if (groups == 1 || static_cast<double>(pairs) * rarest * rarest < 20)
    return;
  std::vector<double> expected;
  for (const double first : share)
    for (const double second : share)
      expected.push_back(static_cast<double>(pairs) * first * second);
  const auto on_grid = [&](bool some_repeat) {
    std::vector<std::uint64_t> counts(expected.size());
    for (std::size_t i = 0; i < pairs; ++i) {
      const std::size_t first = 2 * i, second = some_repeat && i % 20 == 0 ? first : first + 1;
      ++counts[group[cells[first]] * groups + group[cells[second]]];
    }
    return chi_square(counts, expected);
  };
  expect_fit(on_grid(false), expected.size());
  EXPECT_GT(on_grid(true), critical_chi_square(expected.size())) << "dependence passes";
}

} // namespace hvl::streams::test
