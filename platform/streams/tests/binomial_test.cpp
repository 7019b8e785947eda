// The binomial, hypergeometric and negative binomial distributions have their law on both sides of where the method changes,
// the same values in every mode, and exact ends.
#include <array>
#include <limits>

#include <boost/math/distributions/binomial.hpp>
#include <boost/math/distributions/negative_binomial.hpp>

#include "law_fit.hpp"

namespace hvl::streams::test {
namespace {

constexpr std::int32_t greatest = std::numeric_limits<std::int32_t>::max();

class binomial_numbers : public each_engine {
 protected:
  bool is_first() const { return id() == VQS_ENGINE_PHILOX4X32X10; }
  std::size_t count() const { return std::size_t{1} << (is_first() ? 20 : 17); }
};

TEST_P(binomial_numbers, fit_their_law) {
  if (GetParam().about.is_quasi_random)
    GTEST_SKIP() << "a value of several words mixes coordinates";
  const auto check = [&](std::int32_t trials, double p) {
    SCOPED_TRACE(testing::Message() << trials << " trials, p " << p);
    const double mean = trials * p, deviation = std::sqrt(mean * (1 - p));
    const double wrong_p = p + (p < 0.5 ? 0.05 : -0.05) * deviation / trials;
    const auto law = [=](double k, double of_p) {
      return cdf(boost::math::binomial_distribution<>(trials, of_p), std::min<double>(k, trials));
    };
    check_law(
        id(), count(), mean, deviation, [=](double k) { return law(k, p); },
        [=](double k) { return law(k, wrong_p); }, binomial(trials, p));
  };
  check(20, 0.3);
  check(1'000'000'000, 0.3);
  if (!is_first())
    return;
  check(1000, 0.4);
  check(1'000'000'000, 1e-9);
  for (const std::int32_t trials : {4'194'304, 4'194'305}) // the table's last, and beyond
    check(trials, 0.5);
  check(greatest, 0.9);
  check(greatest, 0.001);
}

TEST_P(binomial_numbers, hypergeometric_ones_fit_their_law) {
  if (GetParam().about.is_quasi_random)
    GTEST_SKIP() << "a value of several words mixes coordinates";
  const auto check = [&](std::int32_t l, std::int32_t s, std::int32_t m) {
    SCOPED_TRACE(testing::Message() << l << ' ' << s << ' ' << m);
    const double mean = static_cast<double>(s) / l * m,
                 deviation = std::sqrt(mean * (l - m) / l * (l - s) / (l - 1.0));
    const double moved = std::max(1.0, std::floor(0.1 * deviation * l / s));
    check_law(id(), count(), mean, deviation, hypergeometric_law(l, s, m),
              hypergeometric_law(l, s, m < l / 2 ? m + moved : m - moved), hypergeometric(l, s, m));
  };
  check(100, 30, 40);
  check(greatest, greatest / 2, greatest / 3);
  if (!is_first())
    return;
  check(16'777'214, 8'388'607, 8'388'607); // the table's last, about, and beyond
  check(16'778'000, 8'389'000, 8'389'000);
  check(greatest, 2'000'000'000, 1'999'999'999);
  check(greatest, 1000, 2'000'000'000);
  check(5'000'000, 4'999'000, 2'500'000);
}

TEST_P(binomial_numbers, negative_ones_fit_their_law) {
  if (GetParam().about.is_quasi_random)
    GTEST_SKIP() << "a value of several words mixes coordinates";
  const auto check = [&](double a, double p) {
    SCOPED_TRACE(testing::Message() << "a " << a << ", p " << p);
    const double mean = a * (1 - p) / p, deviation = std::sqrt(mean / p);
    const auto law = [=](double k, double of_a) {
      return cdf(boost::math::negative_binomial_distribution<>(of_a, p), k);
    };
    check_law(
        id(), count(), mean, deviation, [=](double k) { return law(k, a); },
        [=](double k) { return law(k, a + 0.1 * std::sqrt(a) + 0.1 * a); }, negative_binomial(a, p));
  };
  check(2.5, 0.3);
  check(2.5, 0.001);
  if (!is_first())
    return;
  check(0.3, 0.05);
  check(0.3, 1.0 / 256);
  check(0.3, std::nextafter(1.0 / 256, 0.0));
  check(1.0, 1e-5);
  check(1e5, 0.5);
  check(1e8, 0.2);
}

TEST_P(binomial_numbers, are_the_same_in_every_mode_and_split) {
  constexpr std::size_t n = 30'001, first = 10'003;
  for (const auto& [generate, words] :
       {std::pair(binomial(greatest, 0.3), std::size_t{2}),
        std::pair(hypergeometric(greatest, 1'000'000'000, 99'999'999), std::size_t{2}),
        std::pair(negative_binomial(0.7, 1e-4), std::size_t{6}),
        std::pair(negative_binomial(1e5, 1e-4), std::size_t{6})}) {
    owned_stream whole(id());
    const auto expected = generated(whole, n, generate);
    EXPECT_EQ(whole.saved(), owned_stream(id()).skip(words * n).saved());
    for_every_mode([&] {
      expect_equal(generated(owned_stream(id()), n, generate), expected);
      owned_stream stream(id());
      auto parts = generated(stream, first, generate);
      const auto rest = generated(stream, n - first, generate);
      parts.insert(parts.end(), rest.begin(), rest.end());
      expect_equal(parts, expected);
    });
  }
}

HVL_STREAMS_FOR_EACH_ENGINE(binomial_numbers);

TEST(binomial_numbers, of_certain_laws_are_constants_and_take_their_words) {
  for_every_mode([&] {
    for (const auto& [generate, value] :
         {std::pair(binomial(0, 0.5), 0), std::pair(binomial(9, 0), 0),
          std::pair(binomial(greatest, 1), greatest), std::pair(hypergeometric(0, 0, 0), 0),
          std::pair(hypergeometric(greatest, 0, 7), 0), std::pair(hypergeometric(greatest, greatest, 7), 7),
          std::pair(hypergeometric(greatest, 7, greatest), 7),
          std::pair(hypergeometric(greatest, greatest, greatest), greatest),
          std::pair(negative_binomial(3.5, 1), 0)}) {
      owned_stream stream(VQS_ENGINE_MRG32K3A);
      expect_equal(generated(stream, 1001, generate), std::vector<std::int32_t>(1001, value));
      EXPECT_EQ(stream.saved(), owned_stream(VQS_ENGINE_MRG32K3A).skip(2002).saved());
    }
  });
}

TEST(binomial_numbers, stay_in_range) {
  const auto expect_range = [](const generator& generate, std::int32_t least, std::int32_t most) {
    for (const std::int32_t value : generated(owned_stream(VQS_ENGINE_MT19937), 20'001, generate)) {
      ASSERT_GE(value, least);
      ASSERT_LE(value, most);
    }
  };
  expect_range(negative_binomial(1e-3, 1e-300), 0, greatest);
  expect_range(
      negative_binomial(std::numeric_limits<double>::max(), std::numeric_limits<double>::denorm_min()),
      greatest, greatest);
  expect_range(negative_binomial(std::numeric_limits<double>::denorm_min(), 1e-3), 0, 0);
  expect_range(hypergeometric(greatest, greatest - 1, greatest - 1), greatest - 2, greatest - 1);
}

TEST(binomial_numbers, misuse_changes_nothing) {
  owned_stream stream(VQS_ENGINE_MRG32K3A);
  const auto before = stream.saved();
  std::int32_t r[1] = {poison};
  const double nan = std::numeric_limits<double>::quiet_NaN(),
               infinite = std::numeric_limits<double>::infinity();
  EXPECT_EQ(viRngBinomial_64(1, stream, 1, r, 3, 0.5), VQS_STATUS_BAD_METHOD);
  EXPECT_EQ(viRngHypergeometric_64(1, stream, 1, r, 3, 2, 1), VQS_STATUS_BAD_METHOD);
  EXPECT_EQ(viRngNegbinomial_64(1, stream, 1, r, 3, 0.5), VQS_STATUS_BAD_METHOD);
  EXPECT_EQ(viRngBinomial_64(0, stream, 1, r, -1, 0.5), VQS_STATUS_BAD_PARAMETER);
  for (const double bad : {-1e-300, std::nextafter(1.0, 2.0), nan, infinite}) {
    EXPECT_EQ(viRngBinomial_64(0, stream, 1, r, 3, bad), VQS_STATUS_BAD_PARAMETER) << bad;
    EXPECT_EQ(viRngNegbinomial_64(0, stream, 1, r, 3, bad), VQS_STATUS_BAD_PARAMETER) << bad;
  }
  for (const double bad : {0.0, -1.0, nan, infinite})
    EXPECT_EQ(viRngNegbinomial_64(0, stream, 1, r, bad, 0.5), VQS_STATUS_BAD_PARAMETER) << bad;
  EXPECT_EQ(viRngNegbinomial_64(0, stream, 1, r, 3, 0), VQS_STATUS_BAD_PARAMETER);
  for (const auto& [l, s, m] : {std::array{-1, 0, 0}, {5, 6, 1}, {5, 1, 6}, {5, -1, 1}, {5, 1, -1}})
    EXPECT_EQ(viRngHypergeometric_64(0, stream, 1, r, l, s, m), VQS_STATUS_BAD_PARAMETER) << l << s << m;
  EXPECT_EQ(r[0], poison);
  EXPECT_EQ(stream.saved(), before);
}

} // namespace
} // namespace hvl::streams::test
