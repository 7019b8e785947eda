// Means, variances and covariances of many values of a distribution beside the exact ones.
#pragma once

#include <boost/math/distributions/normal.hpp>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "support.hpp"

namespace hvl::streams::test {

struct moments {
  double mean, variance, kurtosis_excess;
};

// scale * law + displacement
inline moments moved(const moments& m, double displacement, double scale) {
  return {displacement + scale * m.mean, scale * scale * m.variance, m.kurtosis_excess};
}

// Of a vector: with A its components less their means, covariance(i, j) = E[Ai Aj] and fourth(i, j) = E[Ai^2 Aj^2].
struct joint_moments {
  std::vector<double> mean;
  std::function<double(std::size_t, std::size_t)> covariance, fourth;
};

inline joint_moments joint(const moments& m) {
  return {{m.mean},
          [=](std::size_t, std::size_t) { return m.variance; },
          [=](std::size_t, std::size_t) { return (m.kurtosis_excess + 3) * m.variance * m.variance; }};
}

class table {
 public:
  table(std::int64_t n, std::string name) : n_(n), name_(std::move(name)) {
    std::printf("%-56s %10s %10s %10s\n", "", "mean", "variance", "covariance");
  }

  template <class T, class... P, class... Q>
  void row(const char* name, const moments& exact,
           int (*function)(std::int64_t, vqs_stream, std::int64_t, T*, P...), std::int64_t method,
           Q... parameters) {
    const double all[] = {static_cast<double>(parameters)...};
    row<T>(name, all, joint(exact), [=](vqs_stream stream, std::int64_t n, T* r) {
      return function(method, stream, n, r, static_cast<P>(parameters)...);
    });
  }

  // generate(stream, n, r) makes n vectors.
  template <class T, class Generate>
  void row(const std::string& name, std::span<const double> parameters, const joint_moments& exact,
           Generate generate) {
    if (!name_.empty() && name_ != name)
      return;
    const std::size_t d = exact.mean.size(), piece = (std::size_t{1} << 22) / d;
    const owned_stream stream(VQS_ENGINE_PHILOX4X32X10);
    std::vector<T> values(piece * d);
    std::vector<double> sums(d), products(d * d);
    for (std::int64_t left = n_; left > 0; left -= static_cast<std::int64_t>(piece)) {
      const std::size_t count = std::min(static_cast<std::size_t>(left), piece);
      if (generate(stream, static_cast<std::int64_t>(count), values.data()) != VQS_STATUS_OK)
        std::abort();
      const auto centred = [&](std::size_t i, std::size_t k) {
        return static_cast<double>(values[i * d + k]) - exact.mean[k];
      };
      for (std::size_t k = 0; k < d; ++k)
        for (std::size_t j = 0; j <= k; ++j) {
          double sum = 0, product = 0;
          for (std::size_t i = 0; i < count; ++i) {
            const double x = centred(i, k);
            sum += x;
            product += x * (j == k ? x : centred(i, j));
          }
          sums[k] += j == k ? sum : 0;
          products[k * d + j] += product;
        }
    }
    const auto n = static_cast<double>(n_);
    double farthest[3] = {}; // mean, variance, covariance
    const auto see = [&](double& one, double errors) {
      if (std::isnan(errors) || std::abs(errors) > std::abs(one))
        one = errors;
    };
    for (std::size_t k = 0; k < d; ++k) {
      see(farthest[0], sums[k] / std::sqrt(n * exact.covariance(k, k)));
      for (std::size_t j = 0; j <= k; ++j) {
        const double covariance = exact.covariance(k, j);
        see(farthest[j == k ? 1 : 2], (products[k * d + j] / n - covariance) /
                                          std::sqrt((exact.fourth(k, j) - covariance * covariance) / n));
      }
    }
    const double limit = boost::math::quantile(boost::math::complement(boost::math::normal(), 1e-8 / 2));
    const bool fits =
        std::all_of(std::begin(farthest), std::end(farthest), [=](double x) { return std::abs(x) < limit; });
    std::string text = name + " (";
    for (const double x : parameters)
      text += (text.back() == '(' ? "" : ", ") + number(x);
    text += std::is_same_v<T, float> ? "), float" : ")";
    std::printf("%-56s %10.2f %10.2f", text.c_str(), farthest[0], farthest[1]);
    if (d > 1)
      std::printf(" %10.2f", farthest[2]);
    std::printf("%s\n", fits ? "" : "  WRONG");
    std::fflush(stdout);
    any_ = true;
    all_fit_ = all_fit_ && fits;
  }

  bool all_fit() const { return any_ && all_fit_; }

 private:
  static std::string number(double x) {
    char text[32];
    std::snprintf(text, sizeof text, "%.10g", x);
    return text;
  }

  std::int64_t n_;
  std::string name_; // empty: all
  bool any_ = false, all_fit_ = true;
};

} // namespace hvl::streams::test
