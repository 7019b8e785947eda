// The geometric distribution: vectors, threads and splits give the numbers that the transform makes one by one; these have
// the law at every p, whatever of it lies beyond the greatest integer.
#include <hvl/math/transforms/geometric.hpp>

#include <algorithm>
#include <cmath>
#include <limits>

#include "extreme_words.hpp"
#include "fit.hpp"
#include "hvl/streams_scaling.hpp"

namespace hvl::streams::test {
namespace {

constexpr std::int32_t greatest = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t poison = -7;

std::vector<std::int32_t> generated(vqs_stream stream, std::size_t n, double p) {
  std::vector<std::int32_t> values(n + 1, poison); // never a null pointer
  EXPECT_EQ(viRngGeometric_64(0, stream, static_cast<std::int64_t>(n), values.data(), p), VQS_STATUS_OK);
  EXPECT_EQ(values.back(), poison) << "written behind the end";
  values.pop_back();
  return values;
}

std::vector<std::int32_t> one_by_one(vqs_stream stream, std::size_t n, double p) {
  using O = math::scalar_ops<double>;
  const run_mode scalar(HVL_ISA_SCALAR, 1);
  const double cell = uniform_coefficients(about_engine_of(stream).scale, 0.0, 1.0).scale;
  std::vector<double> u(2 * n);
  EXPECT_EQ(vdRngUniform_64(0, copy_of(stream), static_cast<std::int64_t>(2 * n), u.data(), 0, 1),
            VQS_STATUS_OK);
  std::vector<std::int32_t> values(n);
  for (std::size_t i = 0; i < n; ++i)
    values[i] = static_cast<std::int32_t>(
        math::geometric_icdf<O>(math::refined<O>(u[2 * i], u[2 * i + 1], cell), math::geometric_scale(p)));
  return values;
}

class geometric : public each_engine {};

TEST_P(geometric, has_the_values_of_its_transform) {
  constexpr std::size_t longest = 2100;
  owned_stream origin(id());
  origin.skip(3);
  for (const double p : {1e-10, 1e-8, 0.01, 0.5, 0.999}) {
    const auto expected = one_by_one(origin, longest, p);
    for_every_mode([&] {
      for (const std::size_t n :
           {std::size_t{0}, std::size_t{1}, std::size_t{2}, std::size_t{3}, std::size_t{7}, std::size_t{9},
            std::size_t{16}, std::size_t{33}, longest - 1, longest}) {
        owned_stream stream(origin);
        expect_equal(generated(stream, n, p),
                     {expected.begin(), expected.begin() + static_cast<std::ptrdiff_t>(n)});
        EXPECT_EQ(stream.saved(), owned_stream(origin).skip(2 * n).saved());
      }
    });
  }
}

TEST_P(geometric, threads_and_splits_change_nothing) {
  constexpr std::size_t n = 1'000'001, first = 400'007;
  std::vector<std::int32_t> parts;
  {
    const run_mode one_thread(-1, 1);
    owned_stream stream(id());
    parts = generated(stream, first, 1e-5);
    const auto rest = generated(stream, n - first, 1e-5);
    parts.insert(parts.end(), rest.begin(), rest.end());
  }
  const run_mode two_threads(-1, 2);
  expect_equal(generated(owned_stream(id()), n, 1e-5), parts);
}

TEST_P(geometric, of_a_certain_success_is_0_and_takes_its_words) {
  for_every_mode([&] {
    owned_stream stream(id());
    expect_equal(generated(stream, 1001, 1), std::vector<std::int32_t>(1001, 0));
    EXPECT_EQ(stream.saved(), owned_stream(id()).skip(2002).saved());
  });
}

// P(X <= k)
double cdf(double k, double p) {
  return p == 1 ? 1 : -std::expm1((k + 1) * std::log1p(-p));
}

// Bins of about equal probability, none expected to hold less than 20 values, the last one up to the greatest integer.
void check_fit(std::int32_t engine, std::size_t n, double p) {
  SCOPED_TRACE(testing::Message() << "p = " << p);
  const auto values = generated(owned_stream(engine), n, p);
  ASSERT_GE(*std::min_element(values.begin(), values.end()), 0);
  const auto count = static_cast<double>(n);
  std::vector<std::int32_t> last; // of each bin but the last
  double below = 0;
  for (int i = 1; i < 100; ++i) {
    const double k = std::max(std::ceil(std::log1p(-i / 100.0) / std::log1p(-p)) - 1, 0.0);
    if (k < greatest && (cdf(k, p) - below) * count >= 20 && (1 - cdf(k, p)) * count >= 20) {
      last.push_back(static_cast<std::int32_t>(k));
      below = cdf(k, p);
    }
  }
  ASSERT_FALSE(last.empty());
  std::vector<std::uint32_t> cell_of;
  std::vector<std::uint64_t> counts(last.size() + 1);
  for (const std::int32_t value : values) {
    const auto cell = std::lower_bound(last.begin(), last.end(), value) - last.begin();
    cell_of.push_back(static_cast<std::uint32_t>(cell));
    ++counts[static_cast<std::size_t>(cell)];
  }
  const auto expected = [&](double parameter, double of_values) {
    std::vector<double> all;
    double sum = 0;
    for (const std::int32_t k : last) {
      all.push_back((cdf(k, parameter) - sum) * of_values);
      sum = cdf(k, parameter);
    }
    all.push_back((1 - sum) * of_values);
    return all;
  };
  expect_fit(chi_square(counts, expected(p, count)), counts.size());
  const double failure_also = 1 - 1.1 * (1 - p); // where p is near 1, failures are a tenth likelier
  EXPECT_GT(chi_square(counts, expected(p < 0.5 ? 1.1 * p : failure_also, count)),
            critical_chi_square(counts.size()))
      << "a wrong parameter passes";
  expect_independent_neighbours(cell_of, expected(p, 1));
}

TEST_P(geometric, fits_its_law) {
  if (GetParam().about.is_quasi_random)
    GTEST_SKIP() << "a value of two words mixes coordinates";
  if (id() == VQS_ENGINE_PHILOX4X32X10)
    for (const double p : {1e-10, 3e-10, 1e-9, 1e-8, 1e-6, 1e-4, 0.01, 0.1, 0.3, 0.5, 0.9, 0.99, 0.999})
      check_fit(id(), std::size_t{1} << 22, p);
  else
    for (const double p : {1e-9, 0.01, 0.7})
      check_fit(id(), std::size_t{1} << 18, p);
}

HVL_STREAMS_FOR_EACH_ENGINE(geometric);

// Below p = 1e-10 fewer values than one in a thousand are within the integers: what is not is the greatest.
TEST(geometric_values, end_at_the_greatest_integer) {
  for_every_mode([&] {
    for (const double p : {1e-14, 1e-300, std::numeric_limits<double>::denorm_min()})
      expect_equal(generated(owned_stream(VQS_ENGINE_PHILOX4X32X10), 1001, p),
                   std::vector<std::int32_t>(1001, greatest));
  });
}

// u = 0 gives the greatest value that p allows, u = 1 gives 0.
TEST(geometric_values, of_extreme_words_are_those_of_the_transform) {
  constexpr std::size_t n = extreme_words / 2;
  for (const double p : {1e-300, 1e-10, 1e-3, 0.5, std::nextafter(1.0, 0.0), 1.0})
    for (const owned_stream& origin : streams_of_extreme_words()) {
      const auto expected = one_by_one(origin, n, p);
      EXPECT_GE(*std::min_element(expected.begin(), expected.end()), 0);
      for_every_mode([&] { expect_equal(generated(owned_stream(origin), n, p), expected); });
    }
}

TEST(geometric_values, misuse_changes_nothing) {
  owned_stream stream(VQS_ENGINE_MRG32K3A);
  const auto before = stream.saved();
  std::int32_t r[1] = {poison};
  EXPECT_EQ(viRngGeometric_64(1, stream, 1, r, 0.5), VQS_STATUS_BAD_METHOD);
  EXPECT_EQ(viRngGeometric_64(VQS_METHOD_ACCURATE, stream, 1, r, 0.5), VQS_STATUS_BAD_METHOD);
  EXPECT_EQ(viRngGeometric_64(0, nullptr, 1, r, 0.5), VQS_STATUS_NULL_POINTER);
  EXPECT_EQ(viRngGeometric_64(0, stream, 1, nullptr, 0.5), VQS_STATUS_NULL_POINTER);
  EXPECT_EQ(viRngGeometric_64(0, stream, -1, r, 0.5), VQS_STATUS_BAD_COUNT);
  for (const double bad : {0.0, -0.5, std::nextafter(1.0, 2.0), std::numeric_limits<double>::quiet_NaN(),
                           std::numeric_limits<double>::infinity()})
    EXPECT_EQ(viRngGeometric_64(0, stream, 1, r, bad), VQS_STATUS_BAD_PARAMETER) << bad;
  EXPECT_EQ(r[0], poison);
  EXPECT_EQ(stream.saved(), before);
}

} // namespace
} // namespace hvl::streams::test
