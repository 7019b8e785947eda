// The Poisson distributions have their law at every mean, on both sides of where the method changes; bernoulli and they refuse
// what is no parameter.
#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include <boost/math/distributions/poisson.hpp>

#include "law_fit.hpp"

namespace hvl::streams::test {
namespace {

constexpr double switched = 1048576;
constexpr std::int32_t greatest = std::numeric_limits<std::int32_t>::max();

void check_poisson(std::int32_t engine, std::size_t n, double mean, const generator& generate) {
  SCOPED_TRACE(testing::Message() << "mean " << mean);
  const double deviation = std::sqrt(mean);
  const auto law = [](double of_mean) {
    return [=](double k) { return cdf(boost::math::poisson_distribution<>(of_mean), k); };
  };
  check_law(engine, n, mean, deviation, law(mean), law(mean + 0.05 * deviation), generate);
}

class poisson_numbers : public each_engine {};

TEST_P(poisson_numbers, fit_their_law) {
  if (GetParam().about.is_quasi_random)
    GTEST_SKIP() << "a value of two words mixes coordinates";
  if (id() == VQS_ENGINE_PHILOX4X32X10)
    for (const double mean :
         {1e-4, 0.1, 1.0, 7.5, 30.0, 1000.0, 1e5, switched, std::nextafter(switched, 2e6), 3e6, 1e8, 2e9})
      check_poisson(id(), std::size_t{1} << 21, mean, poisson(mean));
  else
    for (const double mean : {0.1, 30.0, 1e5, 1e7})
      check_poisson(id(), std::size_t{1} << 18, mean, poisson(mean));
}

TEST_P(poisson_numbers, of_many_means_fit_theirs) {
  if (GetParam().about.is_quasi_random)
    GTEST_SKIP() << "a value of two words mixes coordinates";
  const bool is_first = id() == VQS_ENGINE_PHILOX4X32X10;
  for (const double mean : {1e-4, 0.5, 3.0, std::nextafter(10.0, 0.0), 10.0, 300.0, 1e6})
    if (is_first || mean == 0.5 || mean == 10)
      check_poisson(id(), std::size_t{1} << (is_first ? 20 : 17), mean, poisson_v(mean));
}

TEST_P(poisson_numbers, are_the_same_in_every_mode_and_split) {
  constexpr std::size_t n = 50'001, first = 20'003;
  std::vector<double> means(n);
  for (std::size_t i = 0; i < n; ++i)
    means[i] = std::array{0.0, 0.1, 9.0, 10.0, 1e4, 3e9}[i % 6];
  const auto of_means = [&](std::size_t from) {
    return [&means, from](vqs_stream s, std::int64_t count, std::int32_t* r) {
      return viRngPoissonV_64(0, s, count, r, means.data() + from);
    };
  };
  const auto whole = [&](const auto& generate) {
    owned_stream stream(id());
    auto values = generated(stream, n, generate);
    EXPECT_EQ(stream.saved(), owned_stream(id()).skip(2 * n).saved());
    return values;
  };
  const auto expected_v = whole(of_means(0)), expected = whole(poisson(1e7));
  for (std::size_t i = 0; i + 5 < n; i += 6) {
    ASSERT_EQ(expected_v[i], 0);
    ASSERT_EQ(expected_v[i + 5], greatest);
  }
  for_every_mode([&] {
    expect_equal(whole(of_means(0)), expected_v);
    expect_equal(whole(poisson(1e7)), expected);
    owned_stream stream(id());
    auto parts = generated(stream, first, of_means(0));
    const auto rest = generated(stream, n - first, of_means(first));
    parts.insert(parts.end(), rest.begin(), rest.end());
    expect_equal(parts, expected_v);
  });
}

HVL_STREAMS_FOR_EACH_ENGINE(poisson_numbers);

TEST(poisson_values, end_at_the_greatest_integer) {
  const auto near = generated(owned_stream(VQS_ENGINE_PHILOX4X32X10), 10'000, poisson(2147483648.0));
  const auto saturated = static_cast<double>(std::count(near.begin(), near.end(), greatest));
  EXPECT_NEAR(saturated, 5000, 300); // six deviations
  EXPECT_GT(*std::min_element(near.begin(), near.end()), greatest - 400'000);
  for (const double mean : {2147800000.0, 1e15, std::numeric_limits<double>::max()})
    for_every_mode([&] {
      expect_equal(generated(owned_stream(VQS_ENGINE_PHILOX4X32X10), 1001, poisson(mean)),
                   std::vector<std::int32_t>(1001, greatest));
    });
}

TEST(discrete, misuse_changes_nothing) {
  owned_stream stream(VQS_ENGINE_MRG32K3A);
  const auto before = stream.saved();
  std::int32_t r[1] = {poison};
  const double nan = std::numeric_limits<double>::quiet_NaN(),
               infinite = std::numeric_limits<double>::infinity();
  EXPECT_EQ(viRngPoisson_64(1, stream, 1, r, 0.5), VQS_STATUS_BAD_METHOD);
  EXPECT_EQ(viRngBernoulli_64(1, stream, 1, r, 0.5), VQS_STATUS_BAD_METHOD);
  EXPECT_EQ(viRngPoisson_64(0, nullptr, 1, r, 0.5), VQS_STATUS_NULL_POINTER);
  EXPECT_EQ(viRngPoisson_64(0, stream, 1, nullptr, 0.5), VQS_STATUS_NULL_POINTER);
  EXPECT_EQ(viRngBernoulli_64(0, stream, -1, r, 0.5), VQS_STATUS_BAD_COUNT);
  EXPECT_EQ(viRngPoisson_64(0, stream, -1, r, 0.5), VQS_STATUS_BAD_COUNT);
  EXPECT_EQ(viRngThresholds_64(stream, 1, r, nullptr), VQS_STATUS_NULL_POINTER);
  const double means[] = {1, 1, -1};
  EXPECT_EQ(viRngPoissonV_64(1, stream, 2, r, means), VQS_STATUS_BAD_METHOD);
  EXPECT_EQ(viRngPoissonV_64(0, stream, 2, r, nullptr), VQS_STATUS_NULL_POINTER);
  EXPECT_EQ(viRngPoissonV_64(0, stream, 2, nullptr, means), VQS_STATUS_NULL_POINTER);
  EXPECT_EQ(viRngPoissonV_64(0, stream, -1, r, means), VQS_STATUS_BAD_COUNT);
  EXPECT_EQ(viRngPoissonV_64(0, stream, 3, r, means), VQS_STATUS_BAD_PARAMETER);
  for (const double bad : {-1e-300, nan, infinite})
    EXPECT_EQ(viRngPoisson_64(0, stream, 1, r, bad), VQS_STATUS_BAD_PARAMETER) << bad;
  for (const double bad : {-1e-300, std::nextafter(1.0, 2.0), nan, infinite})
    EXPECT_EQ(viRngBernoulli_64(0, stream, 1, r, bad), VQS_STATUS_BAD_PARAMETER) << bad;
  EXPECT_EQ(r[0], poison);
  EXPECT_EQ(stream.saved(), before);
}

} // namespace
} // namespace hvl::streams::test
