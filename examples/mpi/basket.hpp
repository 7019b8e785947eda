// A call on the mean price of four correlated assets at eight dates within a year (Black and Scholes' model). That on the
// arithmetic mean has no formula; that on the geometric one has, and is its control variate (A. G. Z. Kemna and A. C. F.
// Vorst, "A pricing method for options based on average asset values", 1990).
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

namespace basket {

constexpr int assets = 4, dates = 8;
constexpr std::uint32_t dimensions = assets * dates; // normal numbers of a path

constexpr double spot = 100, strike = 100, rate = 0.05, correlation = 0.4, years = 1;
constexpr std::array<double, assets> volatility{0.2, 0.25, 0.3, 0.35};

struct payoffs {
  double arithmetic, geometric; // discounted
};

// Lower triangular, the root of the matrix of correlations.
inline std::array<std::array<double, assets>, assets> correlation_root() {
  std::array<std::array<double, assets>, assets> root{};
  for (int i = 0; i < assets; ++i)
    for (int j = 0; j <= i; ++j) {
      double rest = i == j ? 1 : correlation;
      for (int k = 0; k < j; ++k)
        rest -= root[i][k] * root[j][k];
      root[i][j] = i == j ? std::sqrt(rest) : rest / root[j][j];
    }
  return root;
}

// Of a path made of `dimensions` normal numbers, those of a date together.
inline payoffs payoffs_of(const double* normal) {
  static const auto root = correlation_root();
  constexpr double step = years / dates;
  const double step_root = std::sqrt(step);
  std::array<double, assets> log_growth{};
  double sum = 0, log_sum = 0;
  for (int date = 0; date < dates; ++date, normal += assets)
    for (int i = 0; i < assets; ++i) {
      double shock = 0;
      for (int j = 0; j <= i; ++j)
        shock += root[i][j] * normal[j];
      log_growth[i] += (rate - volatility[i] * volatility[i] / 2) * step + volatility[i] * step_root * shock;
      log_sum += log_growth[i];
      sum += std::exp(log_growth[i]);
    }
  const double discount = std::exp(-rate * years);
  return {discount * std::max(spot * sum / dimensions - strike, 0.0),
          discount * std::max(spot * std::exp(log_sum / dimensions) - strike, 0.0)};
}

// The geometric mean is lognormal.
inline double exact_geometric_price() {
  double mean = 0, variance = 0;
  for (int date = 1; date <= dates; ++date)
    for (int i = 0; i < assets; ++i)
      mean += (rate - volatility[i] * volatility[i] / 2) * years * date / dates;
  for (int d = 1; d <= dates; ++d)
    for (int e = 1; e <= dates; ++e)
      for (int i = 0; i < assets; ++i)
        for (int j = 0; j < assets; ++j)
          variance +=
              (i == j ? 1 : correlation) * volatility[i] * volatility[j] * years * std::min(d, e) / dates;
  mean = std::log(spot) + mean / dimensions;
  variance /= double(dimensions) * dimensions;
  const double deviation = std::sqrt(variance), d2 = (mean - std::log(strike)) / deviation;
  const auto normal_cdf = [](double z) { return std::erfc(-z / std::sqrt(2.0)) / 2; };
  return std::exp(-rate * years) *
         (std::exp(mean + variance / 2) * normal_cdf(d2 + deviation) - strike * normal_cdf(d2));
}

} // namespace basket
