#include "tails.hpp"

#include <boost/math/distributions/chi_squared.hpp>
#include <boost/math/distributions/normal.hpp>
#include <boost/math/distributions/poisson.hpp>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <stdexcept>

namespace quality {
namespace {

double two_sided(double lower, double upper) {
  return std::min(1.0, 2 * std::min(lower, upper));
}

} // namespace

double p_of_chi_square(double statistic, double degrees_of_freedom) {
  const boost::math::chi_squared law(degrees_of_freedom);
  return two_sided(cdf(law, statistic), cdf(complement(law, statistic)));
}

double p_of_normal(double deviations) {
  return std::min(1.0, 2 * cdf(complement(boost::math::normal(), std::abs(deviations))));
}

double p_of_poisson(std::uint64_t count, double mean) {
  const boost::math::poisson law(mean);
  const auto k = static_cast<double>(count);
  return two_sided(cdf(law, k), count == 0 ? 1 : cdf(complement(law, k - 1)));
}

double p_of_counts(std::span<const std::uint64_t> counts, std::span<const double> probabilities) {
  const auto n = static_cast<double>(std::accumulate(counts.begin(), counts.end(), std::uint64_t{0}));
  std::vector<double> observed, expected;
  double seen = 0, due = 0;
  for (std::size_t i = 0; i < counts.size(); ++i) {
    seen += static_cast<double>(counts[i]);
    due += n * probabilities[i];
    if (due >= 10) {
      observed.push_back(seen);
      expected.push_back(due);
      seen = due = 0;
    }
  }
  if (expected.size() < 2)
    throw std::invalid_argument("too few counts for a chi-square");
  observed.back() += seen;
  expected.back() += due;
  double statistic = 0;
  for (std::size_t i = 0; i < observed.size(); ++i)
    statistic += (observed[i] - expected[i]) * (observed[i] - expected[i]) / expected[i];
  return p_of_chi_square(statistic, static_cast<double>(observed.size() - 1));
}

double p_of_least(double p, double tries) {
  return -std::expm1(tries * std::log1p(-p));
}

} // namespace quality
