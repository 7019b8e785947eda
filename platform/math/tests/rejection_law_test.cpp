// Transformed rejection: its hats, the probabilities behind it, and the laws of its values, with exact cells from
// Boost.Math. The words are philox's, so a run repeats; every comparison is allowed a false alarm with probability 1e-9
// for other words.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include <boost/math/distributions/binomial.hpp>
#include <boost/math/distributions/chi_squared.hpp>
#include <boost/math/distributions/normal.hpp>
#include <boost/math/distributions/poisson.hpp>

#include "hvl/math/exp.hpp"
#include "hvl/math/transforms.hpp"

namespace hvl::math {
namespace {

using O = scalar_ops<double>;
constexpr double false_alarm = 1e-9;

template <std::size_t Factors>
double logarithm_at(double k, const rejection_law<Factors>& law) {
  const auto terms = rejection_terms_at<O>(k, law);
  return log<O>(terms.product) / 2 + terms.rest;
}

// visit(name, law, ratio) for every law: ratio(k) = P(k) / P(k - 1).
template <class Visit>
void for_each_law(const Visit& visit) {
  for (const double mean : {10.0, 11.1, 12.0, 17.3, 23.5, 30.0, 58.7, 100.0, 1e3, 1e4, 1048577.0, 1e8, 0x1p31, 0x1p32})
    visit("poisson " + std::to_string(mean), poisson_rejection_of(mean),
          [mean](long double k) { return mean / k; });
  for (const auto& [n, p] : {std::pair{20, 0.5},
                             {40, 0.25},
                             {1000, 0.01},
                             {1000, 0.4},
                             {1000, 0.99},
                             {1000000000, 1e-8},
                             {1000000000, 0.3},
                             {2147483647, 0.5},
                             {2147483647, 0.9999}})
    visit("binomial " + std::to_string(n) + ' ' + std::to_string(p), binomial_rejection_of(n, p),
          [n = n, p = p](long double k) {
            return (n - k + 1) / k * (static_cast<long double>(p) / (1 - static_cast<long double>(p)));
          });
  struct lot {
    std::int32_t l, s, m;
  };
  for (const auto& [l, s, m] : {lot{7200, 3600, 3600},
                                {8000, 7000, 4000},
                                {4000000, 1000, 2000000},
                                {20000000, 10000000, 9000000},
                                {2147483647, 1073741824, 1073741823},
                                {2147483647, 2147000000, 1000000000},
                                {2147483647, 1000000, 5000000}})
    visit("hypergeometric " + std::to_string(l) + ' ' + std::to_string(s) + ' ' + std::to_string(m),
          hypergeometric_rejection_of(l, s, m), [l = l, s = s, m = m](long double k) {
            return (m - k + 1) * (s - k + 1) / (k * (static_cast<long double>(l) - m - s + k));
          });
}

// Along the values from the mode outwards, against the product of the ratios of neighbours.
TEST(transformed_rejection, probabilities_are_exact) {
  for_each_law([](const std::string& name, const auto& law, const auto& ratio) {
    const double at_mode = logarithm_at(law.mode, law);
    const double reach = 9 * law.b / 2.53;
    long double above = 0, below = 0;
    for (double step = 1; step <= std::min(reach, 2e5); ++step) {
      const double high = law.mode + step, low = law.mode - step;
      if (high <= law.greatest) {
        above += std::log(ratio(high));
        ASSERT_NEAR(static_cast<double>(above), logarithm_at(high, law) - at_mode, 1e-11)
            << name << ' ' << high;
      }
      if (low >= law.least) {
        below -= std::log(ratio(low + 1));
        ASSERT_NEAR(static_cast<double>(below), logarithm_at(low, law) - at_mode, 1e-11)
            << name << ' ' << low;
      }
    }
  });
}

// No proposal's share to be accepted exceeds 1, and where the squeeze accepts it is not below the squeeze's bound.
TEST(transformed_rejection, hats_lie_above_and_squeezes_below) {
  for_each_law([](const std::string& name, const auto& law, const auto&) {
    double greatest = 0, least_central = 1, rejected = 0;
    constexpr int points = 20'000;
    for (int i = 0; i < points; ++i)
      for (const bool in_tail : {false, true})
        for (const double sign : {-1.0, 1.0}) {
          const double fraction = (i + 0.5) / points;
          const double s = in_tail ? 0.07 * std::exp(-15 * fraction) : fraction / 2;
          const auto proposal = rejection_proposed<O>(sign * (0.5 - s), 0.0, law);
          if (proposal.k < law.least || proposal.k > law.greatest) {
            rejected += !in_tail;
            continue;
          }
          const double share = std::exp(logarithm_at(proposal.k, law) - law.log_scale) * proposal.slope;
          greatest = std::max(greatest, share);
          if (!in_tail)
            rejected += 1 - share;
          if (proposal.squeezed)
            least_central = std::min(least_central, share);
        }
    EXPECT_LE(greatest, 1) << name;
    EXPECT_GE(least_central, law.squeeze) << name;
    EXPECT_LT(rejected / (2 * points), 0.3) << name;
  });
}

} // namespace
} // namespace hvl::math
