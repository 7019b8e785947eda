// The laws of gamma and geometric against Boost.Math's distribution functions. The words are philox's, so a run repeats;
// every comparison is allowed a false alarm with probability 1e-9 for other words.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include <boost/math/distributions/chi_squared.hpp>
#include <boost/math/distributions/geometric.hpp>
#include <boost/math/special_functions/gamma.hpp>

#include "hvl/math/transforms.hpp"
#include "laws.hpp"

namespace hvl::math {
namespace {

// Value i of a sequence: the uniforms that it takes of its group.
template <class T, std::size_t Words>
struct gamma_input {
  using O = scalar_ops<T>;
  using D = scalar_ops<double>;
  static constexpr std::uint32_t values = sizeof(T) / 4;

  gamma_input(std::uint32_t i, std::uint32_t seed) : which(i % values) {
    draw(own, i / values, seed);
    if constexpr (values == 1) {
      e = erfinv<O>(symmetric<T>(own[0]));
    } else {
      const auto pair = gamma_normal_pair<O>(unit<T>(own[0]), unit<T>(own[1]), 0x1p-32);
      e = which == 0 ? pair.sine : pair.cosine;
    }
    u = unit<T>(own[values + which]);
    power = unit<T>(own[Words - values + which]);
  }

  T value(const gamma_constants<T>& c) const { return gamma_marsaglia<O>(e, u, power, own, which, c); }

  // What stands where the first attempt is rejected.
  T further(const gamma_constants<T>& c) const {
    const auto core = static_cast<T>(gamma_further_core<D>(own, which, c));
    return c.below_one ? gamma_powered<O>(core, power, c) : core;
  }

  bool squeezed(const gamma_constants<T>& c) const { return gamma_squeezed<O>(e, u, c).accepted; }
  bool accepted(const gamma_constants<T>& c) const {
    return squeezed(c) || gamma_accepts<D>(static_cast<double>(e), static_cast<double>(u), c);
  }

  std::uint32_t own[Words];
  std::uint32_t which;
  T e, u, power;
};

// visit(input) for the first `count` values.
template <class T, class Visit>
void for_each_input(T alpha, std::uint32_t count, std::uint32_t seed, const Visit& visit) {
  for (std::uint32_t i = 0; i < count; ++i) {
    if (alpha < 1)
      visit(gamma_input<T, gamma_words<T>(true).words>(i, seed));
    else
      visit(gamma_input<T, gamma_words<T>(false).words>(i, seed));
  }
}

template <class T>
class gamma_law : public ::testing::Test {};
using result_types = ::testing::Types<float, double>;
TYPED_TEST_SUITE(gamma_law, result_types);

// Values of first attempts, and of further ones where a first one was rejected, each have the law themselves; where few
// are rejected the further ones are tried in other groups too.
TYPED_TEST(gamma_law, first_and_further_attempts) {
  using T = TypeParam;
  constexpr std::uint32_t count = 200'000;
  std::uint32_t seed = sizeof(T);
  for (const double shape : {1e-3, 0.1, 0.5, 0.999, 1.0, 1.001, 2.5, 30.0, 60.0, 70.0, 1e4, 1e8}) {
    const auto alpha = static_cast<T>(shape);
    const auto c = gamma_constants_of<T>(alpha, T(0), T(1));
    std::vector<T> all, rejected, further;
    ++seed;
    for_each_input(alpha, count, seed, [&](const auto& input) {
      all.push_back(input.value(c));
      if (!input.accepted(c)) {
        rejected.push_back(all.back());
        ASSERT_EQ(all.back(), input.further(c));
      }
      if (all.size() % 8 < 2)
        further.push_back(input.further(c));
    });
    const auto cdf = [&](double x) { return boost::math::gamma_p(static_cast<double>(alpha), x); };
    for (const auto* values : {&all, &rejected, &further})
      if (values->size() > 100) {
        EXPECT_LT(kolmogorov_statistic(*values, cdf), kolmogorov_bound(values->size()))
            << shape << ", " << values->size() << " values";
      }
    if (shape <= 2.5) {
      EXPECT_GT(rejected.size(), count / 200) << shape;
      EXPECT_LT(rejected.size(), count / 20) << shape;
    }
  }
}

// Uniforms close below the squeeze's threshold and close to the test's: whatever the squeeze accepts the test accepts,
// and the test agrees with the exponent in long double.
TYPED_TEST(gamma_law, squeeze_is_within_the_test) {
  using T = TypeParam;
  using D = scalar_ops<double>;
  constexpr double margin = sizeof(T) == 4 ? 1e-6 : 1e-14;
  std::uint32_t squeezed = 0, undecided = 0;
  for (const double shape : {1e-3, 0.5, 1.0, 1.5, 2.5, 10.0, 100.0}) {
    const auto alpha = static_cast<T>(shape);
    const auto c = gamma_constants_of<T>(alpha, T(0), T(1));
    bool close = false;
    for_each_input(alpha, 100'000, 77, [&](const auto& input) {
      const T e = input.e;
      const auto wide_e = static_cast<double>(e);
      const long double w = static_cast<long double>(c.wide_slope) * e;
      if (w <= -1)
        return;
      close = !close;
      const long double h = 3 * (static_cast<long double>(alpha) + (alpha < 1) - 1 / 3.0L) *
                            (std::log1p(w) - w * (1 - w * (0.5L - w / 3)));
      const double exact = static_cast<double>(std::exp(h));
      const double near = exact * (1 + static_cast<double>(input.u - T(0.5)) * (close ? 1e-10 : 0.1));
      const auto u = static_cast<T>(std::min(near, 1.0));
      if (gamma_squeezed<scalar_ops<T>>(e, u, c).accepted) {
        EXPECT_LT(static_cast<double>(u), exact + margin) << shape << ' ' << e;
        ++squeezed;
      } else {
        ++undecided;
      }
      if (std::fabs(near - exact) > 1e-12 * exact && near < 1) {
        EXPECT_EQ(gamma_accepts<D>(wide_e, near, c), near < exact) << shape << ' ' << e << ' ' << near;
      }
    });
  }
  EXPECT_GT(squeezed, 10'000u);
  EXPECT_GT(undecided, 10'000u);
}

// The first attempt from 1 on whose uniform lies below the exact probability of acceptance is the one that is taken.
TYPED_TEST(gamma_law, further_attempts_are_accepted_as_in_the_exact_exponent) {
  using T = TypeParam;
  using D = scalar_ops<double>;
  for (const double shape : {0.5, 1.0, 2.5, 100.0}) {
    const auto c = gamma_constants_of<T>(static_cast<T>(shape), T(0), T(1));
    const long double triple_d =
        3 * (static_cast<long double>(static_cast<T>(shape)) + (shape < 1) - 1 / 3.0L);
    for_each_input(static_cast<T>(shape), 20'000, 78, [&](const auto& input) {
      for (std::uint32_t attempt = 1; attempt < gamma_attempts; ++attempt) {
        const gamma_uniforms r = gamma_attempt_uniforms(input.own, input.which, attempt);
        const double e = erfinv<D>(r.v);
        const long double w = static_cast<long double>(c.wide_slope) * e;
        if (w <= -1)
          continue;
        const long double excess = std::log(static_cast<long double>(r.u)) -
                                   triple_d * (std::log1p(w) - w * (1 - w * (0.5L - w / 3)));
        if (std::fabs(excess) < 1e-9L)
          break; // either way is right
        if (excess < 0) {
          ASSERT_EQ(gamma_further_core<D>(input.own, input.which, c), gamma_wide_core<D>(e, c)) << shape;
          break;
        }
      }
    });
  }
}

// The share of the first attempts that the squeeze decides, the reason for its form.
TYPED_TEST(gamma_law, squeeze_decides_nearly_all) {
  using T = TypeParam;
  for (const auto& [shape, share] : {std::pair{1.0, 0.07}, {2.5, 0.02}, {0.5, 0.035}, {100.0, 0.001}}) {
    const auto c = gamma_constants_of<T>(static_cast<T>(shape), T(0), T(1));
    int undecided = 0;
    for_each_input(static_cast<T>(shape), 100'000, 5,
                   [&](const auto& input) { undecided += !input.squeezed(c); });
    EXPECT_LT(undecided, 100'000 * share) << shape;
  }
}

// Of neighbours, in double those of one group: as made, and as further attempts make them.
TYPED_TEST(gamma_law, neighbours_are_independent) {
  using T = TypeParam;
  constexpr std::size_t cells = 8;
  constexpr std::uint32_t count = 200'000;
  double edges[cells - 1];
  for (std::size_t i = 1; i < cells; ++i)
    edges[i - 1] = boost::math::gamma_p_inv(2.5, static_cast<double>(i) / cells);
  const auto c = gamma_constants_of<T>(T(2.5), T(0), T(1));
  const boost::math::chi_squared_distribution<double> chi(cells * cells - 1);
  for (const bool further : {false, true}) {
    std::vector<std::size_t> cell;
    for_each_input(T(2.5), count, 21, [&](const auto& input) {
      const auto value = static_cast<double>(further ? input.further(c) : input.value(c));
      cell.push_back(static_cast<std::size_t>(std::upper_bound(edges, std::end(edges), value) - edges));
    });
    double found[cells][cells] = {};
    for (std::size_t i = 0; i < count; i += 2)
      ++found[cell[i]][cell[i + 1]];
    constexpr double expected = count / 2 / static_cast<double>(cells * cells);
    double statistic = 0;
    for (const auto& row : found)
      for (const double n : row)
        statistic += (n - expected) * (n - expected) / expected;
    EXPECT_LT(statistic, boost::math::quantile(boost::math::complement(chi, false_alarm))) << further;
  }
}

double two_words(const std::uint32_t (&own)[2]) {
  return refined<scalar_ops<double>>(unit<double>(own[0]), unit<double>(own[1]), 0x1p-32);
}

TEST(geometric_law, cells_of_equal_probability) {
  constexpr std::uint32_t count = 400'000;
  std::uint32_t seed = 100;
  for (const double p : {1e-10, 1e-9, 1e-4, 0.01, 0.3, 0.5, 0.9, 0.999}) {
    const boost::math::geometric_distribution<double> law(p);
    const double scale = geometric_scale(p);
    // cell i ends with edges[i]
    std::vector<double> edges;
    constexpr double greatest = std::numeric_limits<std::int32_t>::max();
    for (int i = 1; i < 40; ++i) {
      const double edge = std::floor(std::log1p(-i / 40.0) / std::log1p(-p));
      if (edge < greatest && (edges.empty() || edge > edges.back()))
        edges.push_back(edge);
    }
    edges.push_back(greatest);
    std::vector<double> found(edges.size());
    ++seed;
    for (std::uint32_t i = 0; i < count; ++i) {
      std::uint32_t own[2];
      draw(own, i, seed);
      const auto value = static_cast<std::int32_t>(geometric_icdf<scalar_ops<double>>(two_words(own), scale));
      ASSERT_GE(value, 0);
      ++found[static_cast<std::size_t>(std::lower_bound(edges.begin(), edges.end(), value) - edges.begin())];
    }
    double statistic = 0, below = 0;
    for (std::size_t i = 0; i < edges.size(); ++i) {
      const double up_to = i + 1 < edges.size() ? boost::math::cdf(law, edges[i]) : 1.0;
      const double expected = (up_to - below) * count;
      statistic += (found[i] - expected) * (found[i] - expected) / expected;
      below = up_to;
    }
    if (edges.size() > 1) {
      const boost::math::chi_squared_distribution<double> chi(static_cast<double>(edges.size() - 1));
      EXPECT_LT(statistic, boost::math::quantile(boost::math::complement(chi, false_alarm))) << p;
    }
  }
}

TEST(geometric_law, values_and_tails_are_those_of_the_exact_quotient) {
  for (const double p : {1e-10, 1e-7, 1e-3, 0.2, 0.5, 0.999999}) {
    const double scale = geometric_scale(p);
    for (std::uint32_t i = 0; i < 100'000; ++i) {
      std::uint32_t own[2];
      draw(own, i, 8);
      if (i % 2 == 0) // a tail far beyond what one word reaches
        own[0] = 0x80000000;
      const double u = two_words(own);
      const long double exact = std::min(
          std::log(static_cast<long double>(u)) / std::log1p(-static_cast<long double>(p)), 2147483647.0L);
      const auto value = static_cast<std::int32_t>(geometric_icdf<scalar_ops<double>>(u, scale));
      if (std::fabs(exact - std::round(exact)) > 4e-6L || exact == 2147483647.0L) {
        EXPECT_EQ(value, static_cast<std::int32_t>(exact)) << p << ' ' << u;
      }
    }
  }
}

TEST(geometric_bounds, rough_logarithm_at_every_mantissa) {
  double largest = 0;
  for (std::uint32_t i = 1; i <= 1u << 23; ++i) {
    const float u = 0.5f + static_cast<float>(i) * 0x1p-24f;
    const auto found = static_cast<double>(detail::rough_log2<scalar_ops<float>>(u));
    largest = std::max(largest, std::fabs(found - std::log2(static_cast<double>(u))));
  }
  EXPECT_LT(largest, 2.1 * 0x1p-20);
  EXPECT_EQ(detail::rough_log2<scalar_ops<float>>(0x1.8p-60f),
            detail::rough_log2<scalar_ops<float>>(0x1.8p-1f) - 59);
}

// Words that surround every value's ends, and what follows them, on the scales of 32 random bits and of mcg31m1.
TEST(geometric_bounds, contain_the_value_and_seldom_two) {
  using O = scalar_ops<float>;
  for (const double p : {1.0, 0.999, 0.5, 0.3, 0.1, 0.01, 1.0 / 1000}) {
    const double scale = geometric_scale(p);
    ASSERT_LE(-scale, geometric_greatest_scale_for_float);
    const geometric_margins margins = geometric_margins_of(scale);
    for (const double words : {4294967296.0, 2147483647.0}) {
      const double cell = 1 / words;
      std::size_t tried = 0, in_doubt = 0, wrong = 0;
      const auto try_words = [&](double first, double second) {
        if (first < geometric_least_word || first >= words)
          return;
        const double u = refined<scalar_ops<double>>(first * cell, second * 0x1p-32, cell);
        const double value = std::trunc(geometric_icdf<scalar_ops<double>>(u, scale));
        const auto [least, greatest] =
            geometric_bounds_of<O>(static_cast<float>(first) * static_cast<float>(cell), margins);
        ++tried;
        in_doubt += std::trunc(least) != std::trunc(greatest);
        wrong += !(std::trunc(least) <= value && value <= std::trunc(greatest));
      };
      for (double edge = words; edge >= geometric_least_word; edge *= 1 - p)
        for (double first = std::floor(edge) - 40; first <= edge + 40; ++first)
          for (const double second : {0.0, 4294967295.0})
            try_words(first, second);
      EXPECT_EQ(wrong, 0) << p;
      tried = in_doubt = 0;
      for (std::uint32_t i = 0; i < 100'000; ++i) {
        std::uint32_t own[2];
        draw(own, i, 9);
        try_words(std::floor(own[0] * 0x1p-32 * words), own[1]);
      }
      EXPECT_EQ(wrong, 0) << p;
      const double expected = 8 * 0x1p-20 * -scale * static_cast<double>(tried);
      EXPECT_LT(static_cast<double>(in_doubt), expected + 6 * std::sqrt(expected) + 2) << p;
    }
  }
}

} // namespace
} // namespace hvl::math
