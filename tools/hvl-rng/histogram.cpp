#include "histogram.hpp"

#include "failure.hpp"

#include <algorithm>
#include <cmath>

namespace hvl_rng {
namespace {

struct range {
  double low, high;
};

double quantile(std::vector<double>& sample, double probability) {
  const auto at =
      sample.begin() + static_cast<std::ptrdiff_t>(probability * static_cast<double>(sample.size() - 1));
  std::nth_element(sample.begin(), at, sample.end());
  return *at;
}

range range_worth_seeing(std::vector<double>& sample, const exact_law& law) {
  constexpr double rare = 0.001, farthest = 6, near = 0.05;
  const double median = quantile(sample, 0.5);
  // Where most integers are the same one, those beside it are still worth seeing.
  const double least_distance = law.is_discrete ? 1 : 0;
  const double reach = farthest * std::max(quantile(sample, 0.75) - quantile(sample, 0.25), least_distance);
  range seen = {std::max(quantile(sample, rare), median - reach),
                std::min(quantile(sample, 1 - rare), median + reach)};
  const double slack = near * (seen.high - seen.low);
  if (seen.low - law.lower <= slack)
    seen.low = law.lower;
  if (law.upper - seen.high <= slack)
    seen.high = law.upper;
  return seen;
}

// Few numbers want few bars: twice the cube root of their count, within limits.
double bars_for(std::size_t values) {
  return std::clamp(std::round(2 * std::cbrt(static_cast<double>(values))), 10.0, 80.0);
}

} // namespace

std::vector<bar> make_histogram(std::vector<double> sample, const exact_law& law) {
  range seen = range_worth_seeing(sample, law);
  const double most_bars = bars_for(sample.size());
  if (law.is_discrete) {
    seen.low -= 0.5;
    seen.high += 0.5;
  }
  const double extent = seen.high - seen.low;
  const double width = law.is_discrete ? std::ceil(extent / most_bars) : extent / most_bars;
  // Bars narrower than the values are exact show nothing but rounding.
  const double coarsest = std::max(std::fabs(seen.low), std::fabs(seen.high)) * 0x1p-20;
  if (!std::isfinite(extent) || !(width > 0) || (!law.is_discrete && width < coarsest))
    throw failure(exit_status::failed, "the numbers lie too close together, or too far apart, to be drawn");

  std::vector<bar> bars;
  for (std::size_t index = 0; seen.low + static_cast<double>(index) * width < seen.high; ++index)
    bars.push_back({seen.low + static_cast<double>(index) * width, 0, 0});
  for (std::size_t index = 0; index != bars.size(); ++index)
    bars[index].high = index + 1 == bars.size() ? seen.high : bars[index + 1].low;

  for (double value : sample)
    if (seen.low <= value && value <= seen.high)
      ++bars[std::min(bars.size() - 1, static_cast<std::size_t>((value - seen.low) / width))].height;
  for (bar& one : bars)
    one.height /= static_cast<double>(sample.size()) * (one.high - one.low);
  return bars;
}

} // namespace hvl_rng
