// streams_moments [N]: mean and variance of N values (10^9 unless told) of every distribution that has them, on both
// sides of every switch of method, as distances from the exact ones in standard errors. The verdict of one comparison is
// wrong with probability 1e-8.
#include <boost/math/distributions.hpp>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "support.hpp"

namespace hvl::streams::test {
namespace {

namespace bm = boost::math;

struct moments {
  double mean, variance, kurtosis_excess;
};

template <class Law>
moments of(const Law& law) {
  return {mean(law), variance(law), kurtosis_excess(law)};
}

// scale * law + displacement
moments moved(const moments& m, double displacement, double scale) {
  return {displacement + scale * m.mean, scale * scale * m.variance, m.kurtosis_excess};
}

class table {
 public:
  explicit table(std::int64_t n) : n_(n) { std::printf("%-44s %10s %10s\n", "", "mean", "variance"); }

  template <class T, class... P, class... Q>
  void row(const char* name, const moments& exact,
           int (*function)(std::int64_t, vqs_stream, std::int64_t, T*, P...), std::int64_t method,
           Q... parameters) {
    constexpr std::size_t piece = std::size_t{1} << 22;
    const owned_stream stream(VQS_ENGINE_PHILOX4X32X10);
    std::vector<T> values(piece);
    double first = 0, second = 0;
    for (std::int64_t left = n_; left > 0;) {
      const std::int64_t count = std::min<std::int64_t>(left, piece);
      if (function(method, stream, count, values.data(), static_cast<P>(parameters)...) != VQS_STATUS_OK)
        std::abort();
      double sum = 0, squares = 0;
      for (std::int64_t i = 0; i < count; ++i) {
        const double d = static_cast<double>(values[static_cast<std::size_t>(i)]) - exact.mean;
        sum += d;
        squares += d * d;
      }
      first += sum;
      second += squares;
      left -= count;
    }
    const auto n = static_cast<double>(n_);
    const double mean_errors = first / std::sqrt(n * exact.variance);
    const double variance_errors =
        (second / n - exact.variance) / (exact.variance * std::sqrt((exact.kurtosis_excess + 2) / n));
    const double limit = bm::quantile(bm::complement(bm::normal(), 1e-8 / 2));
    const bool fits = std::abs(mean_errors) < limit && std::abs(variance_errors) < limit;
    std::string text = std::string(name) + " (";
    ((text += text.back() == '(' ? number(parameters) : ", " + number(parameters)), ...);
    text += std::is_same_v<T, float> ? "), float" : ")";
    std::printf("%-44s %10.2f %10.2f%s\n", text.c_str(), mean_errors, variance_errors, fits ? "" : "  WRONG");
    std::fflush(stdout);
    all_fit_ = all_fit_ && fits;
  }

  bool all_fit() const { return all_fit_; }

 private:
  static std::string number(double x) {
    char text[32];
    std::snprintf(text, sizeof text, "%.10g", x);
    return text;
  }

  std::int64_t n_;
  bool all_fit_ = true;
};

void continuous(table& t) {
  const moments unit = of(bm::normal());
  t.row("uniform", moved(of(bm::uniform(0, 1)), -2, 3), vsRngUniform_64, 0, -2, 1);
  t.row("uniform", moved(of(bm::uniform(0, 1)), -2, 3), vdRngUniform_64, 0, -2, 1);
  t.row("gaussian box_muller", moved(unit, 0.5, 2), vsRngGaussian_64, VQS_METHOD_GAUSSIAN_BOX_MULLER, 0.5, 2);
  t.row("gaussian box_muller2", moved(unit, 0.5, 2), vsRngGaussian_64, VQS_METHOD_GAUSSIAN_BOX_MULLER2, 0.5,
        2);
  t.row("gaussian icdf", moved(unit, 0.5, 2), vsRngGaussian_64, VQS_METHOD_GAUSSIAN_ICDF, 0.5, 2);
  t.row("gaussian box_muller2", moved(unit, 0.5, 2), vdRngGaussian_64, VQS_METHOD_GAUSSIAN_BOX_MULLER2, 0.5,
        2);
  t.row("gaussian icdf", moved(unit, 0.5, 2), vdRngGaussian_64, VQS_METHOD_GAUSSIAN_ICDF, 0.5, 2);
  t.row("lognormal", moved(of(bm::lognormal(1, 0.5)), 0.5, 2), vsRngLognormal_64, 0, 1, 0.5, 0.5, 2);
  t.row("lognormal", moved(of(bm::lognormal(1, 0.5)), 0.5, 2), vdRngLognormal_64, 0, 1, 0.5, 0.5, 2);
  t.row("exponential", moved(of(bm::exponential()), 0.5, 2), vsRngExponential_64, 0, 0.5, 2);
  t.row("exponential", moved(of(bm::exponential()), 0.5, 2), vdRngExponential_64, 0, 0.5, 2);
  t.row("laplace", moved(of(bm::laplace()), 0.5, 2), vsRngLaplace_64, 0, 0.5, 2);
  t.row("laplace", moved(of(bm::laplace()), 0.5, 2), vdRngLaplace_64, 0, 0.5, 2);
  for (const double shape : {0.75, 1.0, 3.5}) {
    t.row("weibull", moved(of(bm::weibull(shape)), 0.5, 2), vsRngWeibull_64, 0, shape, 0.5, 2);
    t.row("weibull", moved(of(bm::weibull(shape)), 0.5, 2), vdRngWeibull_64, 0, shape, 0.5, 2);
  }
  t.row("rayleigh", moved(of(bm::rayleigh(std::sqrt(0.5))), 0.5, 2), vsRngRayleigh_64, 0, 0.5, 2);
  t.row("rayleigh", moved(of(bm::rayleigh(std::sqrt(0.5))), 0.5, 2), vdRngRayleigh_64, 0, 0.5, 2);
  const moments gumbel =
      moved(of(bm::extreme_value()), 0.5, -2); // the least of many, Boost's is the greatest
  t.row("gumbel", gumbel, vsRngGumbel_64, 0, 0.5, 2);
  t.row("gumbel", gumbel, vdRngGumbel_64, 0, 0.5, 2);
  for (const double shape : {0.001, 0.25, 0.96875, 1.0, 1.03125, 2.5, 100.0, 1e6}) {
    const moments exact = moved(of(bm::gamma_distribution<>(shape)), 0, 2);
    if (shape == static_cast<double>(static_cast<float>(shape)))
      t.row("gamma", exact, vsRngGamma_64, 0, shape, 0, 2);
    t.row("gamma", exact, vdRngGamma_64, 0, shape, 0, 2);
  }
  for (const int freedom : {1, 2, 3, 100}) {
    t.row("chi_square", of(bm::chi_squared(freedom)), vsRngChiSquare_64, 0, freedom);
    t.row("chi_square", of(bm::chi_squared(freedom)), vdRngChiSquare_64, 0, freedom);
  }
  const double shapes[][2] = {{0.25, 0.5}, {0.96875, 0.5}, {0.75, 3}, {1, 1},
                              {1.5, 2.5},  {100, 3},       {1e6, 2e6}};
  for (const auto& [p, q] : shapes) {
    const moments exact = of(bm::beta_distribution<>(p, q));
    if (p < 1e6)
      t.row("beta", exact, vsRngBeta_64, 0, p, q, 0, 1);
    t.row("beta", exact, vdRngBeta_64, 0, p, q, 0, 1);
  }
}

moments of_hypergeometric(double l, double s, double m) {
  const double f = m / l, variance = s * f * (1 - f) * (l - s) / (l - 1);
  const double fourth = (l - 1) * l * l * (l * (l + 1) - 6 * m * (l - m) - 6 * s * (l - s)) +
                        6 * s * m * (l - m) * (l - s) * (5 * l - 6);
  return {s * f, variance, fourth / (s * m * (l - m) * (l - s) * (l - 2) * (l - 3))};
}

void discrete(table& t) {
  constexpr double greatest = std::numeric_limits<std::int32_t>::max();
  for (const double p : {1e-6, 0.3, 0.999}) // 1e-6: some 10^6 values of 10^9 lie above 13.8 million
    t.row("geometric", of(bm::geometric(p)), viRngGeometric_64, 0, p);
  for (const double p : {1e-7, 0.3})
    t.row("bernoulli", of(bm::bernoulli(p)), viRngBernoulli_64, 0, p);
  for (const double mean : {0.001, 1.0, 30.0, 1000.0, 1e6, 1.1e6, 1e8, 0x1p30})
    t.row("poisson", of(bm::poisson(mean)), viRngPoisson_64, 0, mean);
  const double trials[][2] = {{20, 0.3},   {1000, 0.4}, {4194304, 0.5}, {4194305, 0.5},
                              {1e9, 1e-9}, {1e9, 0.3},  {greatest, 0.9}};
  for (const auto& [n, p] : trials)
    t.row("binomial", of(bm::binomial(n, p)), viRngBinomial_64, 0, n, p);
  const double lots[][3] = {{100, 30, 40},
                            {16777214, 8388607, 8388607},
                            {16778000, 8389000, 8389000},
                            {greatest, 1e9, 7e8},
                            {greatest, 1000, 2e9}};
  for (const auto& [l, s, m] : lots)
    t.row("hypergeometric", of_hypergeometric(l, s, m), viRngHypergeometric_64, 0, l, s, m);
  const double successes[][2] = {{2.5, 0.3}, {2.5, 0.001}, {0.01, 0.5}, {1e6, 0.5}, {1e8, 0.3}};
  for (const auto& [a, p] : successes)
    t.row("negative_binomial", of(bm::negative_binomial(a, p)), viRngNegbinomial_64, 0, a, p);
}

} // namespace
} // namespace hvl::streams::test

int main(int count, char** arguments) {
  const double n = count > 1 ? std::strtod(arguments[1], nullptr) : 1e9;
  if (!(n >= 1000 && n <= 1e12)) {
    std::fprintf(stderr, "usage: streams_moments [N], with N from 1000 to 1e12\n");
    return 2;
  }
  hvl::streams::test::table table(static_cast<std::int64_t>(n));
  hvl::streams::test::continuous(table);
  hvl::streams::test::discrete(table);
  return table.all_fit() ? 0 : 1;
}
