// The law of beta against Boost.Math's distribution function. The words are philox's, so a run repeats; every comparison is
// allowed a false alarm with probability 1e-9 for other words.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>
#include <vector>

#include <boost/math/distributions/chi_squared.hpp>
#include <boost/math/special_functions/beta.hpp>

#include "hvl/math/transforms/beta.hpp"
#include "laws.hpp"

namespace hvl::math {
namespace {

double first_beta(const std::uint32_t (&own)[2], const beta_constants& c) {
  return beta_attempt<scalar_ops<double>>(unit<double>(own[0]), unit<double>(own[1]), 0x1p-32, c);
}

double whole_beta(const std::uint32_t (&own)[2], const beta_constants& c) {
  return beta_cheng_johnk<scalar_ops<double>>(unit<double>(own[0]), unit<double>(own[1]), 0x1p-32, own, c);
}

// The forms change where a shape is 1/2 or 1, and at a slope of 2^-10.
constexpr std::pair<double, double> beta_shapes[] = {
    {1e-3, 1e-3}, {0.01, 1},  {0.5, 0.5}, {0.3, 1.01},  {0.51, 0.51}, {0.6, 1e8}, {1, 1},    {1.001, 1.001},
    {1.001, 50},  {2.5, 1.5}, {30, 0.7},  {4e5, 1.1e6}, {6e5, 7e5},   {1e8, 1e8}, {1e8, 1e6}};

// As gamma's: values of first attempts, and of further ones where a first one was rejected, each have the law themselves.
TEST(beta_law, first_and_further_attempts) {
  constexpr std::uint32_t count = 200'000;
  std::uint32_t seed = 500;
  for (const auto& [p, q] : beta_shapes) {
    const beta_constants c = beta_constants_of(p, q, 0, 1);
    std::vector<double> first, rejected, further;
    ++seed;
    for (std::uint32_t i = 0; i < count; ++i) {
      std::uint32_t own[2];
      draw(own, i, seed);
      const double attempt = first_beta(own, c), value = whole_beta(own, c);
      ASSERT_TRUE(value >= 0 && value <= 1);
      (attempt == attempt ? first : rejected).push_back(value);
      if (attempt == attempt) {
        ASSERT_EQ(attempt, value);
      }
      if (i % 4 == 0)
        further.push_back(beta_further<scalar_ops<double>>(own, c));
    }
    const auto cdf = [p = p, q = q](double x) { return x >= 1 ? 1.0 : boost::math::ibeta(p, q, x); };
    for (const auto* values : {&first, &rejected, &further})
      if (values->size() > 100) {
        EXPECT_LT(kolmogorov_statistic(*values, cdf), kolmogorov_bound(values->size()))
            << p << ' ' << q << ", " << values->size() << " values";
      }
    EXPECT_GT(first.size(), count * (p <= 0.5 && q > 1 ? 0.25 : 0.45)) << p << ' ' << q;
  }
}

// Uniforms close to the probability of acceptance decide as it does in long double, and it is one at most.
TEST(beta_law, attempts_are_accepted_as_in_the_exact_exponent) {
  std::uint32_t decided = 0;
  for (const auto& [p, q] : beta_shapes) {
    const beta_constants c = beta_constants_of(p, q, 0, 1);
    if (c.form == beta_form::joehnk)
      continue;
    const long double a = std::min(p, q), sum = static_cast<long double>(p) + q;
    for (std::uint32_t i = 0; i < 20'000; ++i) {
      std::uint32_t own[2];
      draw(own, i, 600);
      const double u = unit<double>(own[0]);
      if (u <= 0)
        continue;
      const long double v = c.slope * std::log(u / (1 - static_cast<long double>(u)));
      if (v > 1e4L)
        continue;
      const long double h = a * v - sum * std::log1p(a / sum * std::expm1(v));
      const auto exact = static_cast<double>(std::exp(h) / (4 * u * (1 - static_cast<long double>(u))));
      ASSERT_LT(exact, 1 + 1e-9) << p << ' ' << q << ' ' << u;
      if (exact < 1e-12)
        continue;
      for (const double near : {exact * (1 - 1e-6), exact * (1 + 1e-6)})
        if (near <= 1) {
          const double value = beta_attempt<scalar_ops<double>>(u, near, 0, c);
          ASSERT_EQ(value == value, near < exact) << p << ' ' << q << ' ' << u;
          ++decided;
        }
    }
  }
  EXPECT_GT(decided, 200'000u);
}

// Shapes at the ends of the type: nothing leaves [0, 1], and small ones give 0 and 1 by their ratio.
TEST(beta_law, of_extreme_shapes) {
  constexpr double greatest = std::numeric_limits<double>::max(),
                   least = std::numeric_limits<double>::denorm_min();
  const double shapes[] = {least, 1e-300, 1e-40, 0.5, 1, 1 + 2e-16, 2, 1e8, 1e300, greatest};
  for (const double p : shapes)
    for (const double q : shapes) {
      const beta_constants c = beta_constants_of(p, q, 0, 1);
      double mean = 0;
      constexpr std::uint32_t count = 4000;
      for (std::uint32_t i = 0; i < count; ++i) {
        std::uint32_t own[2];
        draw(own, i, 700);
        const double value = whole_beta(own, c);
        ASSERT_TRUE(value >= 0 && value <= 1) << p << ' ' << q;
        mean += value / count;
      }
      const double exact = 1 / (1 + q / p);
      EXPECT_NEAR(mean, exact, 6 * std::sqrt(exact * (1 - exact) / count) + 1e-12) << p << ' ' << q;
    }
}

TEST(beta_law, neighbours_are_independent) {
  constexpr std::size_t cells = 8;
  constexpr std::uint32_t count = 200'000;
  const beta_constants c = beta_constants_of(2.5, 1.5, 0, 1);
  double edges[cells - 1], found[cells][cells] = {};
  for (std::size_t i = 1; i < cells; ++i)
    edges[i - 1] = boost::math::ibeta_inv(2.5, 1.5, static_cast<double>(i) / cells);
  std::size_t before = 0;
  for (std::uint32_t i = 0; i < count; ++i) {
    std::uint32_t own[2];
    draw(own, i, 800);
    const auto cell =
        static_cast<std::size_t>(std::upper_bound(edges, std::end(edges), whole_beta(own, c)) - edges);
    if (i % 2 == 1)
      ++found[before][cell];
    before = cell;
  }
  constexpr double expected = count / 2 / static_cast<double>(cells * cells);
  double statistic = 0;
  for (const auto& row : found)
    for (const double n : row)
      statistic += (n - expected) * (n - expected) / expected;
  const boost::math::chi_squared_distribution<double> chi(cells * cells - 1);
  EXPECT_LT(statistic, boost::math::quantile(boost::math::complement(chi, false_alarm)));
}

} // namespace
} // namespace hvl::math
