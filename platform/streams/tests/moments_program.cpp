// streams_moments [N [NAME]]: mean and variance of N values (10^9 unless told) of every distribution that has them, or of
// the one with that name, on both sides of every switch of method, as distances from the exact ones in standard errors. Of
// N vectors it is the components', the farthest one's, and their covariances. The verdict of one comparison is wrong with
// probability 1e-8.
#include <boost/math/distributions.hpp>

#include <array>
#include <cmath>
#include <limits>

#include "moments_table.hpp"

namespace hvl::streams::test {
namespace {

namespace bm = boost::math;

template <class Law>
moments of(const Law& law) {
  return {mean(law), variance(law), kurtosis_excess(law)};
}

// In float u is 0 for 65 words of 2^32 and 1 for 191, and its logarithm then that of the smallest positive number: `end` where
// all else ends near 17. Of so many words the values, which have these second and fourth moments, count here.
constexpr double end = 103.279;
moments with_end(const moments& m, double words, double second, double fourth) {
  const double share = words * 0x1p-32, variance = m.variance + share * second;
  const double fourth_of_all = (m.kurtosis_excess + 3) * m.variance * m.variance + share * fourth;
  return {m.mean, variance, fourth_of_all / (variance * variance) - 3};
}

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
  const double radius = std::sqrt(2 * end); // Box and Muller's, with any angle
  const moments lognormal =
      with_end(of(bm::lognormal(1, 0.5)), 65, std::exp(2) * std::cyl_bessel_i(0, radius),
               std::exp(4) * std::cyl_bessel_i(0, 2 * radius));
  t.row("lognormal", moved(lognormal, 0.5, 2), vsRngLognormal_64, 0, 1, 0.5, 0.5, 2);
  t.row("lognormal", moved(of(bm::lognormal(1, 0.5)), 0.5, 2), vdRngLognormal_64, 0, 1, 0.5, 0.5, 2);
  t.row("exponential", moved(with_end(of(bm::exponential()), 65, end * end, std::pow(end, 4)), 0.5, 2),
        vsRngExponential_64, 0, 0.5, 2);
  t.row("exponential", moved(of(bm::exponential()), 0.5, 2), vdRngExponential_64, 0, 0.5, 2);
  t.row("laplace", moved(of(bm::laplace()), 0.5, 2), vsRngLaplace_64, 0, 0.5, 2);
  t.row("laplace", moved(of(bm::laplace()), 0.5, 2), vdRngLaplace_64, 0, 0.5, 2);
  for (const double shape : {0.75, 1.0, 3.5}) {
    const double greatest = std::pow(end, 1 / shape);
    t.row("weibull",
          moved(with_end(of(bm::weibull(shape)), 65, std::pow(greatest, 2), std::pow(greatest, 4)), 0.5, 2),
          vsRngWeibull_64, 0, shape, 0.5, 2);
    t.row("weibull", moved(of(bm::weibull(shape)), 0.5, 2), vdRngWeibull_64, 0, shape, 0.5, 2);
  }
  t.row("rayleigh", moved(of(bm::rayleigh(std::sqrt(0.5))), 0.5, 2), vsRngRayleigh_64, 0, 0.5, 2);
  t.row("rayleigh", moved(of(bm::rayleigh(std::sqrt(0.5))), 0.5, 2), vdRngRayleigh_64, 0, 0.5, 2);
  const moments least = moved(of(bm::extreme_value()), 0, -1); // Boost's is the greatest of many
  t.row("gumbel", moved(with_end(least, 191, end * end, std::pow(end, 4)), 0.5, 2), vsRngGumbel_64, 0, 0.5,
        2);
  t.row("gumbel", moved(least, 0.5, 2), vdRngGumbel_64, 0, 0.5, 2);
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

// Of components with the covariance T T', T packed by rows.
template <class T, class Function>
void gaussian_vectors(table& t, Function function) {
  static constexpr T a[] = {0.5, -2, 0}, factor[] = {2, -1, 0.5, 0.25, 1.5, 0.125};
  const auto covariance = [](std::size_t k, std::size_t j) {
    double sum = 0;
    for (std::size_t i = 0; i <= std::min(k, j); ++i)
      sum += static_cast<double>(factor[k * (k + 1) / 2 + i] * factor[j * (j + 1) / 2 + i]);
    return sum;
  };
  const auto fourth = [=](std::size_t k, std::size_t j) {
    return covariance(k, k) * covariance(j, j) + 2 * covariance(k, j) * covariance(k, j);
  };
  t.row<T>("gaussian_mv", std::array{3.0}, {{a[0], a[1], a[2]}, covariance, fourth},
           [=](vqs_stream s, std::int64_t n, T* r) { return function(0, s, n, r, 3, 1, a, factor); });
}

// A sum of independent trials, each of which has one outcome.
void multinomial(table& t, std::int32_t trials, const std::vector<double>& p) {
  const auto one = [=](std::size_t k, std::size_t j) { return k == j ? p[k] * (1 - p[k]) : -p[k] * p[j]; };
  const auto fourth_of_one = [=](std::size_t k, std::size_t j) {
    double sum = 0;
    for (std::size_t i = 0; i < p.size(); ++i)
      sum += p[i] * std::pow((i == k) - p[k], 2) * std::pow((i == j) - p[j], 2);
    return sum;
  };
  const double n = trials;
  joint_moments exact;
  std::vector<double> parameters = {n};
  for (const double of_outcome : p) {
    exact.mean.push_back(n * of_outcome);
    parameters.push_back(of_outcome);
  }
  exact.covariance = [=](std::size_t k, std::size_t j) { return n * one(k, j); };
  exact.fourth = [=](std::size_t k, std::size_t j) {
    return n * fourth_of_one(k, j) + n * (n - 1) * (one(k, k) * one(j, j) + 2 * one(k, j) * one(k, j));
  };
  t.row<std::int32_t>(
      "multinomial", parameters, exact, [=](vqs_stream s, std::int64_t count, std::int32_t* r) {
        return viRngMultinomial_64(0, s, count, r, trials, static_cast<std::int32_t>(p.size()), p.data());
      });
}

// Neighbours as components, which are independent.
void poisson_of_means(table& t, const std::vector<double>& means) {
  const auto covariance = [=](std::size_t k, std::size_t j) { return k == j ? means[k] : 0; };
  const auto fourth = [=](std::size_t k, std::size_t j) {
    return k == j ? means[k] * (1 + 3 * means[k]) : means[k] * means[j];
  };
  t.row<std::int32_t>(
      "poisson_v", means, {means, covariance, fourth},
      [=, all = std::vector<double>()](vqs_stream s, std::int64_t n, std::int32_t* r) mutable {
        const auto values = static_cast<std::size_t>(n) * means.size();
        while (all.size() < values)
          all.insert(all.end(), means.begin(), means.end());
        return viRngPoissonV_64(0, s, static_cast<std::int64_t>(values), r, all.data());
      });
}

void vectors(table& t) {
  gaussian_vectors<float>(t, vsRngGaussianMV_64);
  gaussian_vectors<double>(t, vdRngGaussianMV_64);
  multinomial(t, 20, {0.1, 0.2, 0.3, 0.4});
  multinomial(t, 1000, {0.01, 0.6, 0.014, 0.376});
  multinomial(t, 1'000'000'000, {1e-9, 0.3, 0.2, 0.5 - 1e-9});
  poisson_of_means(t, {0.001, 0.5, 9.5});
  poisson_of_means(t, {10, 300, 1e8});
}

} // namespace
} // namespace hvl::streams::test

int main(int count, char** arguments) {
  const double n = count > 1 ? std::strtod(arguments[1], nullptr) : 1e9;
  if (!(n >= 1000 && n <= 1e12)) {
    std::fprintf(stderr, "usage: streams_moments [N [NAME]], with N from 1000 to 1e12\n");
    return 2;
  }
  hvl::streams::test::table table(static_cast<std::int64_t>(n), count > 2 ? arguments[2] : "");
  hvl::streams::test::continuous(table);
  hvl::streams::test::discrete(table);
  hvl::streams::test::vectors(table);
  return table.all_fit() ? 0 : 1;
}
