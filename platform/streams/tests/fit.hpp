// What the tests of fit share: chi-square, its critical value, and what all comparisons of a program may cost. Streams
// are fixed, so a verdict never changes from run to run; over all seeds each comparison would fail by chance with
// probability `alarm`, and every program checks at its end that all of its comparisons together stay below `all_alarms`.
#pragma once

#include <boost/math/distributions/chi_squared.hpp>
#include <gtest/gtest.h>

#include <cstdint>
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

} // namespace hvl::streams::test
