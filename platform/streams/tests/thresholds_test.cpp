// Discrete laws by thresholds: these are the laws' own; however a value is searched among them, vectors, threads and splits
// give the one that both words of its uniform decide.
#include <algorithm>
#include <cmath>
#include <limits>

#include <boost/math/distributions/binomial.hpp>
#include <boost/math/distributions/hypergeometric.hpp>
#include <boost/math/distributions/negative_binomial.hpp>
#include <boost/math/distributions/poisson.hpp>

#include "discrete.hpp"
#include "extreme_words.hpp"
#include "hvl/streams_thresholds.hpp"

namespace hvl::streams::test {
namespace {

generator of_table(const vqs_thresholds& table) {
  return [=](vqs_stream s, std::int64_t n, std::int32_t* r) { return viRngThresholds_64(s, n, r, &table); };
}

// The uniforms of the next `n` values, each of two words.
std::vector<double> uniforms(vqs_stream stream, std::size_t n) {
  const run_mode scalar(HVL_ISA_SCALAR, 1);
  const double cell = uniform_coefficients(about_engine_of(stream).scale, 0.0, 1.0).scale;
  const auto words = copy_of(stream).doubles(2 * n);
  std::vector<double> u(n);
  for (std::size_t i = 0; i < n; ++i)
    u[i] = std::fma(words[2 * i + 1], cell, words[2 * i]);
  return u;
}

std::vector<std::int32_t> one_by_one(vqs_stream stream, std::size_t n, const vqs_thresholds& t) {
  std::vector<std::int32_t> values;
  for (const double u : uniforms(stream, n))
    values.push_back(t.origin + t.step * static_cast<std::int32_t>(
                                             std::upper_bound(t.upper, t.upper + t.count, u) - t.upper));
  return values;
}

// Errors are relative ones, down to what the left-out tail has; of a law that is turned round Boost gives the complement.
template <class Law, class Exceeding>
void expect_thresholds(const char* name, const Law& law, const Exceeding& exceeding) {
  SCOPED_TRACE(name);
  const law_thresholds table(law);
  const vqs_thresholds t = table.view();
  ASSERT_TRUE(std::is_sorted(t.upper, t.upper + t.count));
  EXPECT_LT(t.count, 33'000u);
  EXPECT_GT(t.upper[t.count], 1);
  const std::uint32_t stride = 1 + t.count / 500;
  for (std::uint32_t i = 0; i < t.count; i += stride) {
    // the probability of passing no more than i thresholds
    const std::int32_t at = t.origin + t.step * static_cast<std::int32_t>(i);
    const double exact = t.step < 0 ? exceeding(at - 1.0) : 1 - exceeding(at);
    EXPECT_NEAR(t.upper[i], exact, 2e-10 * exact + (t.step > 0 ? 1e-14 : 0x1p-70)) << at;
  }
}

TEST(thresholds, are_the_probabilities_of_exceeding) {
  using namespace boost::math;
  const auto above = [](const auto& law) {
    return [=](double k) { return k < 0 ? 1.0 : cdf(complement(law, k)); };
  };
  for (const double mean : {1e-10, 0.3, 1.0, 9.999, 77.7, 1000.0, 30'000.0, 1048576.0})
    expect_thresholds("poisson", math::poisson_law{mean}, above(poisson_distribution<>(mean)));
  for (const auto& [trials, p] :
       {std::pair(1, 0.3), std::pair(20, 0.3), std::pair(1000, 0.4), std::pair(50, 0.9),
        std::pair(2147483647, 1e-9), std::pair(4'000'000, 0.5), std::pair(7, 1e-12)})
    expect_thresholds("binomial", math::binomial_law(trials, p), above(binomial_distribution<>(trials, p)));
  for (const auto& [a, p] : {std::pair(0.01, 0.5), std::pair(1.0, 0.01), std::pair(7.5, 0.3),
                             std::pair(1e6, 0.9), std::pair(300.0, 0.02)})
    expect_thresholds("negative binomial", math::negative_binomial_law(a, p),
                      above(negative_binomial_distribution<>(a, p)));
  // a sum; lot, sample and marked ones
  const auto hypergeometric = [](int l, int s, int m) {
    return [=](double k) {
      const auto log_ways = [](int of, int n) {
        return std::lgamma(of + 1.0L) - std::lgamma(n + 1.0L) - std::lgamma(of - n + 1.0L);
      };
      long double sum = 0;
      for (int i = std::min(s, m); i > k && i >= s + m - l; --i)
        sum += std::exp(log_ways(m, i) + log_ways(l - m, s - i) - log_ways(l, s));
      return static_cast<double>(sum);
    };
  };
  for (const auto& [l, s, m] : {std::array{20, 7, 9}, std::array{1000, 400, 300}, std::array{100, 60, 90},
                                std::array{100, 30, 2}, std::array{5000, 4000, 4900}, std::array{9, 9, 4}})
    expect_thresholds("hypergeometric", math::hypergeometric_law(l, s, m), hypergeometric(l, s, m));
}

TEST(thresholds, of_certain_values_are_none) {
  const auto expect_constant = [](const auto& law, std::int32_t value) {
    const law_thresholds table(law);
    EXPECT_EQ(table.view().count, 0u);
    EXPECT_EQ(table.view().origin, value);
  };
  expect_constant(math::poisson_law{0}, 0);
  expect_constant(math::binomial_law(0, 0.5), 0);
  expect_constant(math::binomial_law(9, 0), 0);
  expect_constant(math::binomial_law(9, 1), 9);
  expect_constant(math::binomial_law(2147483647, 1), 2147483647);
  expect_constant(math::negative_binomial_law(3, 1), 0);
  for (const std::int32_t greatest : {1, 10, 2147483647}) {
    expect_constant(math::hypergeometric_law(greatest, 0, greatest / 2), 0);
    expect_constant(math::hypergeometric_law(greatest, greatest, greatest / 2), greatest / 2);
    expect_constant(math::hypergeometric_law(greatest, greatest / 2, 0), 0);
    expect_constant(math::hypergeometric_law(greatest, greatest / 2, greatest), greatest / 2);
  }
}

class thresholds_of_engine : public each_engine {};

TEST_P(thresholds_of_engine, are_searched_to_the_same_values_in_every_way) {
  constexpr std::size_t longest = 2100;
  owned_stream origin(id());
  origin.skip(3);
  const auto check = [&](const auto& law) {
    law_thresholds table(law), guided = table;
    guided.add_guide();
    const auto expected = one_by_one(origin, longest, table.view());
    for_every_mode([&] {
      for (const std::size_t n : {std::size_t{0}, std::size_t{1}, std::size_t{2}, std::size_t{7},
                                  std::size_t{16}, std::size_t{33}, longest - 1, longest})
        for (const auto& t : {table.view(), guided.view()}) {
          owned_stream stream(origin);
          expect_equal(generated(stream, n, of_table(t)),
                       {expected.begin(), expected.begin() + static_cast<std::ptrdiff_t>(n)});
          EXPECT_EQ(stream.saved(), owned_stream(origin).skip(2 * n).saved());
        }
    });
  };
  for (const double mean : {0.0, 1e-3, 1.0, 30.0, 20'000.0})
    check(math::poisson_law{mean});
  check(math::binomial_law(50, 0.9));
}

// The value changes where a threshold passes its uniform, and nowhere else; the first words are then as near as can be.
TEST_P(thresholds_of_engine, part_values_at_their_uniforms) {
  constexpr std::size_t n = 100;
  const owned_stream origin(id());
  const auto u = uniforms(origin, n);
  for_every_mode([&] {
    for (std::size_t i = 0; i < n; i += 7) {
      const double above = std::nextafter(u[i], 2);
      EXPECT_EQ(generated(owned_stream(origin), n, bernoulli(u[i]))[i], 0);
      EXPECT_EQ(generated(owned_stream(origin), n, bernoulli(above))[i], 1);
      EXPECT_EQ(generated(owned_stream(origin), n,
                          bernoulli(u[i] + 300 * 0x1p-32 < 1 ? u[i] + 300 * 0x1p-32 : 1))[i],
                1);
    }
  });
}

TEST_P(thresholds_of_engine, threads_and_splits_change_nothing) {
  constexpr std::size_t n = 1'000'001, first = 400'007;
  std::vector<std::int32_t> parts;
  {
    const run_mode one_thread(-1, 1);
    owned_stream stream(id());
    parts = generated(stream, first, poisson(100));
    const auto rest = generated(stream, n - first, poisson(100));
    parts.insert(parts.end(), rest.begin(), rest.end());
  }
  const run_mode two_threads(-1, 2);
  expect_equal(generated(owned_stream(id()), n, poisson(100)), parts);
}

TEST_P(thresholds_of_engine, certain_values_take_their_words) {
  for_every_mode([&] {
    for (const auto& [generate, value] :
         {std::pair(bernoulli(0), 0), std::pair(bernoulli(1), 1), std::pair(poisson(0), 0)}) {
      owned_stream stream(id());
      expect_equal(generated(stream, 1001, generate), std::vector<std::int32_t>(1001, value));
      EXPECT_EQ(stream.saved(), owned_stream(id()).skip(2002).saved());
    }
  });
}

HVL_STREAMS_FOR_EACH_ENGINE(thresholds_of_engine);

// A probability of 2^-40 is kept by the second word: of first words that are 0 as many values pass as it says.
TEST(thresholds, of_rare_values_are_decided_by_the_second_word) {
  for (const owned_stream& origin : streams_of_extreme_words()) {
    constexpr std::size_t n = extreme_words / 2;
    for (const double mean : {0x1p-40, 0x1p-33, 0.5, 1e4}) {
      law_thresholds table(math::poisson_law{mean});
      const auto expected = one_by_one(origin, n, table.view());
      table.add_guide();
      EXPECT_GE(*std::min_element(expected.begin(), expected.end()), 0);
      for_every_mode(
          [&] { expect_equal(generated(owned_stream(origin), n, of_table(table.view())), expected); });
    }
  }
}

} // namespace
} // namespace hvl::streams::test
