// The continuous distributions against their exact distribution functions: fit, moments and tails, and neighbouring values
// against each other. Each test of fit is shown to reject the same values with a scale that is 1 % too great.
#include <boost/math/distributions/beta.hpp>
#include <boost/math/distributions/cauchy.hpp>
#include <boost/math/distributions/exponential.hpp>
#include <boost/math/distributions/extreme_value.hpp>
#include <boost/math/distributions/gamma.hpp>
#include <boost/math/distributions/laplace.hpp>
#include <boost/math/distributions/lognormal.hpp>
#include <boost/math/distributions/normal.hpp>
#include <boost/math/distributions/poisson.hpp>
#include <boost/math/distributions/rayleigh.hpp>
#include <boost/math/distributions/weibull.hpp>

#include <algorithm>
#include <cmath>
#include <map>
#include <optional>

#include "continuous_members.hpp"
#include "fit.hpp"

namespace hvl::streams::test {
namespace {

namespace bm = boost::math;

// location + scale X, with what is known of X.
struct exact_distribution {
  std::function<double(double)> quantile;
  struct moments {
    double mean, variance, kurtosis_excess;
  };
  std::optional<moments> finite_moments;
  double location, scale;
  bool has_far_tails = true; // false where they end within the rounding of the location
  bool fits_float = true;    // false where a bin has not many floats
};

template <class D>
exact_distribution with_moments(const D& d, double location, double scale) {
  return {[=](double p) { return bm::quantile(d, p); },
          exact_distribution::moments{bm::mean(d), bm::variance(d), bm::kurtosis_excess(d)}, location, scale};
}

// By the name of a member, without "_accurate"; the parameters are those of continuous_members.
const std::map<std::string, exact_distribution>& exact_distributions() {
  static const auto all = [] {
    const double third = 1.0 / 3, half = 0.5;
    const auto normal = with_moments(bm::normal(), third, half);
    const auto lognormal = with_moments(bm::lognormal(1, half), third, 2);
    const bm::cauchy cauchy;
    const bm::extreme_value greatest; // a value here is the negative of a greatest one
    exact_distribution gumbel = with_moments(greatest, third, half);
    gumbel.quantile = [=](double p) { return -bm::quantile(bm::complement(greatest, p)); };
    gumbel.finite_moments->mean = -bm::mean(greatest);
    exact_distribution beta_small = with_moments(
        bm::beta_distribution<double>(static_cast<double>(0.3f), static_cast<double>(0.4f)), third, half);
    beta_small.has_far_tails = false;
    exact_distribution beta_large = with_moments(bm::beta_distribution<double>(3e6, 2e6), third, half);
    beta_large.fits_float = false;
    return std::map<std::string, exact_distribution>{
        {"gaussian_box_muller", normal},
        {"gaussian_box_muller2", normal},
        {"gaussian_icdf", normal},
        {"lognormal_box_muller2", lognormal},
        {"lognormal_icdf", lognormal},
        {"exponential", with_moments(bm::exponential(), third, half)},
        {"weibull", with_moments(bm::weibull(1.7, 1), third, half)},
        {"rayleigh", with_moments(bm::rayleigh(std::sqrt(half)), third, half)},
        {"laplace", with_moments(bm::laplace(), third, half)},
        {"gumbel", gumbel},
        {"beta", with_moments(bm::beta_distribution<double>(2.5, 1.5), third, half)},
        {"beta_one_below_one",
         with_moments(bm::beta_distribution<double>(static_cast<double>(0.7f), 3), third, half)},
        {"beta_small", beta_small},
        {"beta_large", beta_large},
        {"gamma", with_moments(bm::gamma_distribution<double>(1.7), third, half)},
        {"gamma_below_one", with_moments(bm::gamma_distribution<double>(0.9), third, half)},
        {"gamma_large", with_moments(bm::gamma_distribution<double>(100), third, half)},
        {"chi_square", with_moments(bm::chi_squared(5), 0, 1)},
        {"cauchy", {[=](double p) { return bm::quantile(cauchy, p); }, std::nullopt, third, half}}};
  }();
  return all;
}

const exact_distribution& exact(const std::string& member_name) {
  return exact_distributions().at(member_name.substr(0, member_name.find("_accurate")));
}

// Bins of equal probability.
class equal_bins {
 public:
  equal_bins(const std::function<double(double)>& quantile, std::size_t bins) {
    for (std::size_t i = 1; i < bins; ++i)
      edges_.push_back(quantile(static_cast<double>(i) / static_cast<double>(bins)));
  }
  std::size_t count() const { return edges_.size() + 1; }
  std::vector<double> expected(std::size_t n) const {
    return std::vector<double>(count(), static_cast<double>(n) / static_cast<double>(count()));
  }
  std::size_t operator()(double x) const {
    return static_cast<std::size_t>(std::upper_bound(edges_.begin(), edges_.end(), x) - edges_.begin());
  }

 private:
  std::vector<double> edges_;
};

template <class T>
std::vector<double> standardised(std::int32_t engine, const member<T>& m, std::size_t n) {
  std::vector<T> values(n, std::numeric_limits<T>::quiet_NaN());
  EXPECT_EQ(m.generate(owned_stream(engine), static_cast<std::int64_t>(n), values.data()), VQS_STATUS_OK);
  const exact_distribution& e = exact(m.name);
  std::vector<double> x(n);
  std::transform(values.begin(), values.end(), x.begin(),
                 [&](T v) { return (static_cast<double>(v) - e.location) / e.scale; });
  return x;
}

double fit(const std::vector<double>& x, const equal_bins& bins, double factor) {
  std::vector<std::uint64_t> counts(bins.count());
  for (const double v : x)
    ++counts[bins(v * factor)];
  return chi_square(counts, bins.expected(x.size()));
}

// No count outside the range that a Poisson variable keeps.
void expect_tail(std::uint64_t count, double expected, const char* what) {
  comparisons::count();
  const bm::poisson p(expected);
  EXPECT_GE(static_cast<double>(count), std::floor(bm::quantile(p, alarm / 2))) << what;
  EXPECT_LE(static_cast<double>(count), std::ceil(bm::quantile(bm::complement(p, alarm / 2)))) << what;
}

void check_moments(const std::vector<double>& x, const exact_distribution::moments& m) {
  const auto n = static_cast<double>(x.size());
  double mean = 0, variance = 0;
  for (const double v : x)
    mean += v / n;
  for (const double v : x)
    variance += (v - m.mean) * (v - m.mean) / n;
  const double deviations = bm::quantile(bm::complement(bm::normal(), alarm / 2));
  comparisons::count();
  EXPECT_NEAR(mean, m.mean, deviations * std::sqrt(m.variance / n));
  comparisons::count();
  EXPECT_NEAR(variance, m.variance, deviations * m.variance * std::sqrt((m.kurtosis_excess + 2) / n));
}

template <class T>
void check_fit(std::int32_t engine, const member<T>& m, std::size_t n) {
  SCOPED_TRACE(m.name);
  const exact_distribution& e = exact(m.name);
  if (sizeof(T) == 4 && !e.fits_float)
    return;
  const equal_bins bins(e.quantile, 128);
  const std::vector<double> x = standardised(engine, m, n);
  expect_fit(fit(x, bins, 1), bins.count());
  if (e.finite_moments)
    check_moments(x, *e.finite_moments);
  for (const double p : {1e-4, 1e-5}) {
    if (!e.has_far_tails)
      break;
    const double low = e.quantile(p), high = e.quantile(1 - p);
    expect_tail(
        static_cast<std::uint64_t>(std::count_if(x.begin(), x.end(), [=](double v) { return v < low; })),
        p * static_cast<double>(n), "lower tail");
    expect_tail(
        static_cast<std::uint64_t>(std::count_if(x.begin(), x.end(), [=](double v) { return v > high; })),
        p * static_cast<double>(n), "upper tail");
  }
  if (n >= std::size_t{1} << 22) {
    EXPECT_GT(fit(x, bins, 1.01), critical_chi_square(bins.count())) << "a wrong scale passes";
    const equal_bins wide(e.quantile, 8);
    std::vector<std::uint32_t> cells;
    for (std::size_t i = 0; i < x.size() / 4; ++i)
      cells.push_back(static_cast<std::uint32_t>(wide(x[i])));
    expect_independent_neighbours(cells, std::vector<double>(8, 1.0 / 8));
  }
}

class statistics : public each_engine {};

TEST_P(statistics, every_method_fits_its_distribution) {
  if (GetParam().about.is_quasi_random)
    GTEST_SKIP()
        << "points are more even than random ones, and methods that take several words would break that";
  const std::size_t n = std::size_t{1} << (id() == VQS_ENGINE_PHILOX4X32X10 ? 22 : 18);
  for (const auto& m : continuous_members<float>())
    check_fit(id(), m, n);
  for (const auto& m : continuous_members<double>())
    check_fit(id(), m, n);
}

// Beyond 4, 4.5 and 5 deviations, on both sides.
template <class T>
void check_normal_tails(const char* name) {
  SCOPED_TRACE(name);
  constexpr std::size_t n = std::size_t{1} << 24;
  for (const auto& m : continuous_members<T>()) {
    if (std::string(m.name) != name)
      continue;
    const std::vector<double> x = standardised(VQS_ENGINE_PHILOX4X32X10, m, n);
    for (const double limit : {4.0, 4.5, 5.0}) {
      const double expected = static_cast<double>(n) * bm::cdf(bm::complement(bm::normal(), limit));
      const auto above = std::count_if(x.begin(), x.end(), [=](double v) { return v > limit; });
      const auto below = std::count_if(x.begin(), x.end(), [=](double v) { return v < -limit; });
      expect_tail(static_cast<std::uint64_t>(above), expected, "above");
      expect_tail(static_cast<std::uint64_t>(below), expected, "below");
    }
  }
}

TEST(normal, tails_have_their_weight) {
  for (const char* name : {"gaussian_box_muller", "gaussian_box_muller2", "gaussian_icdf"}) {
    check_normal_tails<float>(name);
    check_normal_tails<double>(name);
  }
}

// The two values of a pair on a grid of equal cells. Against a control: pairs whose second value leans on the first.
TEST(normal, values_of_a_pair_are_independent) {
  constexpr std::size_t pairs = std::size_t{1} << 21;
  std::vector<float> values(2 * pairs, std::nanf(""));
  ASSERT_EQ(vsRngGaussian_64(VQS_METHOD_GAUSSIAN_BOX_MULLER2, owned_stream(VQS_ENGINE_PHILOX4X32X10),
                             2 * pairs, values.data(), 0, 1),
            VQS_STATUS_OK);
  const equal_bins bins([](double p) { return bm::quantile(bm::normal(), p); }, 16);
  const auto on_grid = [&](double correlation) {
    std::vector<std::uint64_t> counts(bins.count() * bins.count());
    for (std::size_t i = 0; i < pairs; ++i) {
      const double first = static_cast<double>(values[2 * i]);
      const double second = correlation * first +
                            std::sqrt(1 - correlation * correlation) * static_cast<double>(values[2 * i + 1]);
      ++counts[bins(first) * bins.count() + bins(second)];
    }
    const std::vector<double> expected(counts.size(),
                                       static_cast<double>(pairs) / static_cast<double>(counts.size()));
    return chi_square(counts, expected);
  };
  const std::size_t cells = bins.count() * bins.count();
  expect_fit(on_grid(0), cells);
  EXPECT_GT(on_grid(0.02), critical_chi_square(cells)) << "dependence passes";
}

HVL_STREAMS_FOR_EACH_ENGINE(statistics);

} // namespace
} // namespace hvl::streams::test
