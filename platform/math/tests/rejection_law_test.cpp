// Transformed rejection: its hats, the probabilities behind it, the bounds, and the laws of its values, with exact cells.
// The words are philox's, so a run repeats; every comparison is allowed a false alarm with probability 1e-9 for other words.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include <boost/math/distributions/chi_squared.hpp>

#include "hvl/math/exp.hpp"
#include "hvl/math/transforms.hpp"
#include "hvl/math/transforms/rejection_bounds.hpp"

namespace hvl::math {
namespace {

using O = scalar_ops<double>;
constexpr double false_alarm = 1e-9;

double logarithm_at(double k, const rejection_law& law) {
  const auto terms = rejection_terms_at<O>(k, law);
  return log<O>(terms.product) / 2 + terms.rest;
}

// visit(name, law, ratio) for every law: ratio(k) = P(k) / P(k - 1).
template <class Visit>
void for_each_law(const Visit& visit) {
  for (const double mean :
       {10.0, 11.1, 12.0, 17.3, 23.5, 30.0, 58.7, 100.0, 1e3, 1e4, 1048577.0, 1e8, 0x1p31, 0x1p32})
    visit("poisson " + std::to_string(mean), poisson_rejection_of(mean),
          [mean](long double k) { return mean / k; });
  for (const auto& [n, p] : {std::pair{20, 0.5},
                             {40, 0.25},
                             {1000, 0.01},
                             {1000, 0.4},
                             {1000, 0.99},
                             {1000000000, 1e-8},
                             {1000000000, 0.3},
                             {2147483647, 0.00049},
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

// What the bounds decide the test decides alike, next to them and hence beyond; and they leave little open. The proposals
// are those of a fine grid, of the tails down to the least s, and next to the ends of the bounds' reach.
TEST(transformed_rejection, bounds_decide_as_the_test_does) {
  using F = scalar_ops<float>;
  for_each_law([](const std::string& name, const rejection_law& law, const auto&) {
    const double deviation = (law.b - 1.15) / 2.53;
    if (deviation < 1023.9)
      return;
    const rejection_curve curve = rejection_curve_of(law);
    constexpr double slack = 0x1p-21; // half of what the bounds have for the uniform
    double greatest_width = 0;
    const auto check = [&](double u) {
      const auto proposal = rejection_proposed<O>(u, 0.0, law);
      const auto bounds = rejection_bounds_of<F>(static_cast<float>(proposal.k - law.mode),
                                                 static_cast<float>(proposal.quotient), curve);
      ASSERT_TRUE(bounds.least <= 0 || rejection_accepts<O>(proposal, bounds.least + slack, law))
          << name << ' ' << u;
      const double rejected = bounds.greatest - slack;
      ASSERT_FALSE(rejection_proposed<O>(u, rejected, law).squeezed) << name << ' ' << u;
      ASSERT_FALSE(rejection_accepts<O>(proposal, rejected, law)) << name << ' ' << u;
      greatest_width = std::max(greatest_width, static_cast<double>(bounds.greatest) - bounds.least);
    };
    constexpr int points = 100'000;
    for (int i = 0; i < points; ++i)
      for (const double sign : {-1.0, 1.0}) {
        const double fraction = (i + 0.5) / points;
        check(sign * fraction / 2);
        check(sign * (0.5 - 0.07 * std::exp(-22 * fraction)));
      }
    EXPECT_LE(greatest_width, 0x1p-11) << name;
  });
}

// Cells of some 1/60 of the probability each: their last values, and their probabilities added up from those of the values.
struct cells_of_law {
  template <class Law, class Ratio>
  cells_of_law(const Law& law, const Ratio& ratio) {
    const double reach = std::ceil(12 * law.b / 2.53) + 12;
    const double least = std::max(law.least, law.mode - reach);
    std::vector<long double> weights;
    for (long double w = 1, k = law.mode; k > least && w > 1e-30L; --k)
      weights.push_back(w /= ratio(k));
    const double first = law.mode - static_cast<double>(weights.size());
    std::reverse(weights.begin(), weights.end());
    weights.push_back(1);
    const double greatest = std::min(law.greatest, law.mode + reach);
    for (long double w = 1, k = law.mode + 1; k <= greatest && w > 1e-30L; ++k)
      weights.push_back(w *= ratio(k));
    long double sum = 0, cell = 0;
    for (const long double w : weights)
      sum += w;
    for (std::size_t i = 0; i < weights.size(); ++i) {
      cell += weights[i] / sum;
      if (cell > 1 / 60.0L || i + 1 == weights.size()) {
        last.push_back(first + static_cast<double>(i));
        probability.push_back(static_cast<double>(cell));
        cell = 0;
      }
    }
    last.back() = law.greatest;
  }

  // Whether numbers like these, or worse, come by chance less often than false alarms.
  bool fit(const std::vector<double>& values) const {
    std::vector<double> found(last.size());
    for (const double v : values)
      ++found[static_cast<std::size_t>(std::lower_bound(last.begin(), last.end(), v) - last.begin())];
    double statistic = 0;
    for (std::size_t i = 0; i < found.size(); ++i) {
      const double expected = probability[i] * static_cast<double>(values.size());
      statistic += (found[i] - expected) * (found[i] - expected) / expected;
    }
    const boost::math::chi_squared_distribution<double> chi(static_cast<double>(last.size() - 1));
    return statistic < boost::math::quantile(boost::math::complement(chi, false_alarm));
  }

  std::vector<double> last, probability;
};

// Values of first attempts and of further ones follow the law, each by themselves; and so do all.
TEST(transformed_rejection, first_and_further_attempts_follow_the_law) {
  std::uint32_t seed = 0;
  for_each_law([&](const std::string& name, const auto& law, const auto& ratio) {
    const cells_of_law cells(law, ratio);
    std::vector<double> first, further, all;
    ++seed;
    for (std::uint32_t i = 0; i < 400'000; ++i) {
      const philox_block words = philox4x32x10_round_brute_10({{i, 0, 0, 0}}, seed, 0);
      const std::uint32_t own[2] = {words.word[0], words.word[1]};
      const double u = static_cast<double>(static_cast<std::int32_t>(own[0])) * 0x1p-32;
      const double v = static_cast<double>(static_cast<std::int32_t>(own[1])) * 0x1p-32 + 0.5;
      all.push_back(rejection_value<O>(u, v, 0x1p-32, own, law));
      ASSERT_GE(all.back(), law.least) << name;
      ASSERT_LE(all.back(), law.greatest) << name;
      const auto proposal = rejection_proposed<O>(u, v, law);
      if (proposal.squeezed || rejection_accepts<O>(proposal, v + 0x1p-33, law)) {
        first.push_back(all.back());
        ASSERT_TRUE(all.back() == proposal.k || v < rejection_coarse_v) << name;
      } else {
        further.push_back(all.back());
        ASSERT_TRUE(all.back() == rejection_further<O>(own, law) || v < rejection_coarse_v) << name;
      }
    }
    EXPECT_TRUE(cells.fit(first)) << name << ": first attempts";
    EXPECT_TRUE(cells.fit(further)) << name << ": further attempts";
    EXPECT_TRUE(cells.fit(all)) << name;
    EXPECT_GT(further.size(), all.size() / 10) << name;
  });
}

// Where the second word is 0 the proposals are those of the hat, whose tails are those of no such law.
TEST(transformed_rejection, least_words_give_no_outliers) {
  for_each_law([&](const std::string& name, const auto& law, const auto&) {
    const double deviation = law.b / 2.53;
    for (std::uint32_t i = 0; i < 20'000; ++i) {
      const std::uint32_t own[2] = {i * 0x9E3779B9, 0x80000000};
      const double u = static_cast<double>(static_cast<std::int32_t>(own[0])) * 0x1p-32;
      const double value = rejection_value<O>(u, 0.0, 0x1p-32, own, law);
      ASSERT_LT(std::fabs(value - law.mode), 14 * deviation) << name;
    }
  });
}

} // namespace
} // namespace hvl::math
