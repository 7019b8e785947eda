// The continuous distributions: vectors, threads and splits give the numbers that the transforms make one by one.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include "continuous_members.hpp"
#include "extreme_words.hpp"

namespace hvl::streams::test {
namespace {

class continuous : public each_engine {};

template <class T>
constexpr T poison = T(-12345.5);

template <class T>
void expect_same_bits(const T* actual, const std::vector<T>& expected, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i)
    ASSERT_EQ(std::memcmp(&actual[i], &expected[i], sizeof(T)), 0)
        << "at " << i << ": " << actual[i] << " for " << expected[i];
}

// Lengths around the vectors' widths, out of alignment, at positions within an engine's block; nothing is written
// behind the end, and the stream has advanced by the words consumed.
template <class T>
void check_vectors(std::int32_t engine, const member<T>& m) {
  SCOPED_TRACE(m.name);
  constexpr std::size_t longest = 2100;
  owned_stream origin(engine);
  origin.skip(3);
  std::vector<T> expected(longest + 1);
  {
    const run_mode scalar(HVL_ISA_SCALAR, 1);
    m.one_by_one(owned_stream(origin), expected);
  }
  for_every_mode([&] {
    for (const std::size_t n :
         {std::size_t{1}, std::size_t{2}, std::size_t{3}, std::size_t{7}, std::size_t{8}, std::size_t{15},
          std::size_t{17}, std::size_t{31}, std::size_t{33}, longest - 1, longest}) {
      std::vector<T> out(n + 9, poison<T>);
      owned_stream stream(origin);
      ASSERT_EQ(m.generate(stream, static_cast<std::int64_t>(n), out.data() + 1), VQS_STATUS_OK);
      expect_same_bits(out.data() + 1, expected, n);
      EXPECT_EQ(out[0], poison<T>);
      for (std::size_t i = n + 1; i < out.size(); ++i)
        ASSERT_EQ(out[i], poison<T>) << "behind the end";
      ASSERT_EQ(stream.saved(), owned_stream(origin).skip(m.words_for(n)).saved()) << n;
    }
  });
}

TEST_P(continuous, has_the_bits_of_its_transforms) {
  for (const auto& m : continuous_members<float>())
    check_vectors(id(), m);
  for (const auto& m : continuous_members<double>())
    check_vectors(id(), m);
}

// No word gives NaN or infinity, and vectors treat the extreme ones as the transforms do.
template <class T>
void check_extreme_words() {
  for (const auto& m : continuous_members<T>()) {
    SCOPED_TRACE(m.name);
    for (const owned_stream& origin : streams_of_extreme_words()) {
      std::vector<T> expected(extreme_words / m.words.words * m.words.values), out(expected.size());
      m.one_by_one(owned_stream(origin), expected);
      ASSERT_TRUE(std::all_of(expected.begin(), expected.end(), [](T v) { return std::isfinite(v); }));
      for_every_mode([&] {
        ASSERT_EQ(m.generate(owned_stream(origin), static_cast<std::int64_t>(out.size()), out.data()),
                  VQS_STATUS_OK);
        expect_same_bits(out.data(), expected, out.size());
      });
    }
  }
}

TEST(continuous_members, are_finite_at_extreme_words) {
  check_extreme_words<float>();
  check_extreme_words<double>();
}

// The methods whose vectors decide some values in a way of their own: their numbers are those of the scalar kernels.
template <class T, class Function, class... Parameters>
void check_scalar(std::int32_t engine, Function function, Parameters... parameters) {
  constexpr std::size_t longest = 20'000;
  const auto generate = [&](std::size_t n, T* r) {
    owned_stream stream(engine);
    stream.skip(3);
    ASSERT_EQ(function(0, stream, static_cast<std::int64_t>(n), r, parameters...), VQS_STATUS_OK);
  };
  std::vector<T> expected(longest);
  {
    const run_mode scalar(HVL_ISA_SCALAR, 1);
    generate(longest, expected.data());
  }
  for_every_mode([&] {
    for (const std::size_t n : {std::size_t{1}, std::size_t{31}, std::size_t{33}, longest - 1, longest}) {
      std::vector<T> out(n + 1, poison<T>);
      generate(n, out.data());
      expect_same_bits(out.data(), expected, n);
      EXPECT_EQ(out[n], poison<T>) << "behind the end";
    }
  });
}

TEST_P(continuous, decided_in_vectors_as_one_by_one) {
  for (const double p : {1.0, 0.3, 1.0 / 1000, 1.0 / 2000, 1e-10}) {
    SCOPED_TRACE(p);
    check_scalar<std::int32_t>(id(), viRngGeometric_64, p);
  }
  for (const double shape : {0.5, 1.0, 2.5}) {
    SCOPED_TRACE(shape);
    check_scalar<float>(id(), vsRngGamma_64, static_cast<float>(shape), 1.0f, 2.0f);
    check_scalar<double>(id(), vdRngGamma_64, shape, 1.0, 2.0);
  }
}

// Pairs whose first word is so small that the second one counts.
TEST(geometric, least_first_words) {
  constexpr std::size_t chunk = std::size_t{1} << 20;
  std::vector<std::uint32_t> words(chunk);
  std::size_t found = 0;
  const owned_stream stream(VQS_ENGINE_PHILOX4X32X10);
  for (std::size_t first = 0; first < 16 * chunk; first += chunk) {
    ASSERT_EQ(viRngUniformBits32_64(0, stream, chunk, words.data()), VQS_STATUS_OK);
    for (std::size_t i = 0; i < chunk; i += 2) {
      if ((words[i] ^ 0x80000000u) >= 1u << 12)
        continue;
      ++found;
      std::vector<std::int32_t> scalar(64), values(64);
      const auto generate = [&](std::vector<std::int32_t>& r) {
        owned_stream at(VQS_ENGINE_PHILOX4X32X10);
        at.skip(first + i);
        ASSERT_EQ(viRngGeometric_64(0, at, 64, r.data(), 1.0 / 1000), VQS_STATUS_OK);
      };
      {
        const run_mode mode(HVL_ISA_SCALAR, 1);
        generate(scalar);
      }
      for_every_mode([&] {
        generate(values);
        expect_equal(values, scalar);
      });
    }
  }
  EXPECT_GT(found, 3u);
}

// One call over two threads is what two calls are, where the split leaves no group cut.
template <class T>
void check_split(std::int32_t engine, const member<T>& m) {
  SCOPED_TRACE(m.name);
  constexpr std::size_t n = 1'000'001;
  constexpr std::size_t first = 400'006;
  std::vector<T> whole(n, poison<T>), parts(n, poison<T>);
  {
    const run_mode one_thread(-1, 1);
    owned_stream stream(engine);
    ASSERT_EQ(m.generate(stream, first, parts.data()), VQS_STATUS_OK);
    ASSERT_EQ(m.generate(stream, n - first, parts.data() + first), VQS_STATUS_OK);
  }
  const run_mode two_threads(-1, 2);
  ASSERT_EQ(m.generate(owned_stream(engine), n, whole.data()), VQS_STATUS_OK);
  expect_same_bits(whole.data(), parts, n);
}

TEST_P(continuous, threads_and_splits_change_nothing) {
  for (const auto& m : continuous_members<float>())
    check_split(id(), m);
  for (const auto& m : continuous_members<double>())
    check_split(id(), m);
}

TEST_P(continuous, box_muller2_wastes_one_word_of_an_odd_count) {
  owned_stream stream(id());
  float values[5];
  ASSERT_EQ(vsRngGaussian_64(VQS_METHOD_GAUSSIAN_BOX_MULLER2, stream, 5, values, 0, 1), VQS_STATUS_OK);
  EXPECT_EQ(stream.saved(), owned_stream(id()).skip(6).saved());
}

template <class T>
void check_misuse(std::int32_t engine) {
  const auto gaussian = host_function<T>(vsRngGaussian_64, vdRngGaussian_64);
  const auto lognormal = host_function<T>(vsRngLognormal_64, vdRngLognormal_64);
  const auto exponential = host_function<T>(vsRngExponential_64, vdRngExponential_64);
  const auto weibull = host_function<T>(vsRngWeibull_64, vdRngWeibull_64);
  const auto cauchy = host_function<T>(vsRngCauchy_64, vdRngCauchy_64);
  const auto gamma = host_function<T>(vsRngGamma_64, vdRngGamma_64);
  const auto beta = host_function<T>(vsRngBeta_64, vdRngBeta_64);
  const auto chi_square = host_function<T>(vsRngChiSquare_64, vdRngChiSquare_64);
  const T nan = std::numeric_limits<T>::quiet_NaN();
  const T infinity = std::numeric_limits<T>::infinity();
  const owned_stream stream(engine);
  const auto before = stream.saved();
  T r[2] = {poison<T>, poison<T>};
  EXPECT_EQ(gaussian(3, stream, 1, r, 0, 1), VQS_STATUS_BAD_METHOD);
  EXPECT_EQ(gaussian(-1, stream, 1, r, 0, 1), VQS_STATUS_BAD_METHOD);
  EXPECT_EQ(gaussian(VQS_METHOD_ACCURATE, stream, 1, r, 0, 1), VQS_STATUS_BAD_METHOD);
  EXPECT_EQ(lognormal(2, stream, 1, r, 0, 1, 0, 1), VQS_STATUS_BAD_METHOD);
  EXPECT_EQ(lognormal(VQS_METHOD_ACCURATE | 2, stream, 1, r, 0, 1, 0, 1), VQS_STATUS_BAD_METHOD);
  EXPECT_EQ(exponential(1, stream, 1, r, 0, 1), VQS_STATUS_BAD_METHOD);
  EXPECT_EQ(cauchy(VQS_METHOD_ACCURATE, stream, 1, r, 0, 1), VQS_STATUS_BAD_METHOD);
  EXPECT_EQ(gamma(1, stream, 1, r, 1, 0, 1), VQS_STATUS_BAD_METHOD);
  EXPECT_EQ(gamma(VQS_METHOD_ACCURATE | 1, stream, 1, r, 1, 0, 1), VQS_STATUS_BAD_METHOD);
  EXPECT_EQ(chi_square(VQS_METHOD_ACCURATE, stream, 1, r, 1), VQS_STATUS_BAD_METHOD);
  EXPECT_EQ(beta(VQS_METHOD_ACCURATE, stream, 1, r, 1, 1, 0, 1), VQS_STATUS_BAD_METHOD);
  EXPECT_EQ(chi_square(0, stream, 1, r, 0), VQS_STATUS_BAD_PARAMETER);
  EXPECT_EQ(gaussian(0, nullptr, 1, r, 0, 1), VQS_STATUS_NULL_POINTER);
  EXPECT_EQ(gaussian(0, stream, 1, nullptr, 0, 1), VQS_STATUS_NULL_POINTER);
  EXPECT_EQ(weibull(0, stream, -1, r, 1, 0, 1), VQS_STATUS_BAD_COUNT);
  for (const T bad : {nan, infinity, -infinity, T(0), T(-1)}) {
    EXPECT_EQ(gaussian(2, stream, 1, r, 0, bad), VQS_STATUS_BAD_PARAMETER);
    EXPECT_EQ(lognormal(0, stream, 1, r, 0, bad, 0, 1), VQS_STATUS_BAD_PARAMETER);
    EXPECT_EQ(lognormal(0, stream, 1, r, 0, 1, 0, bad), VQS_STATUS_BAD_PARAMETER);
    EXPECT_EQ(weibull(0, stream, 1, r, bad, 0, 1), VQS_STATUS_BAD_PARAMETER);
    EXPECT_EQ(weibull(0, stream, 1, r, 1, 0, bad), VQS_STATUS_BAD_PARAMETER);
    EXPECT_EQ(cauchy(0, stream, 1, r, 0, bad), VQS_STATUS_BAD_PARAMETER);
    EXPECT_EQ(gamma(0, stream, 1, r, bad, 0, 1), VQS_STATUS_BAD_PARAMETER);
    EXPECT_EQ(gamma(VQS_METHOD_ACCURATE, stream, 1, r, 1, 0, bad), VQS_STATUS_BAD_PARAMETER);
    EXPECT_EQ(beta(0, stream, 1, r, bad, 1, 0, 1), VQS_STATUS_BAD_PARAMETER);
    EXPECT_EQ(beta(0, stream, 1, r, 1, bad, 0, 1), VQS_STATUS_BAD_PARAMETER);
    EXPECT_EQ(beta(0, stream, 1, r, 1, 1, 0, bad), VQS_STATUS_BAD_PARAMETER);
    if (!(bad <= 0 && bad > -infinity)) {
      EXPECT_EQ(gaussian(0, stream, 1, r, bad, 1), VQS_STATUS_BAD_PARAMETER);
      EXPECT_EQ(lognormal(0, stream, 1, r, bad, 1, 0, 1), VQS_STATUS_BAD_PARAMETER);
      EXPECT_EQ(lognormal(0, stream, 1, r, 0, 1, bad, 1), VQS_STATUS_BAD_PARAMETER);
      EXPECT_EQ(exponential(0, stream, 1, r, bad, 1), VQS_STATUS_BAD_PARAMETER);
      EXPECT_EQ(gamma(0, stream, 1, r, 1, bad, 1), VQS_STATUS_BAD_PARAMETER);
    }
  }
  EXPECT_EQ(r[0], poison<T>);
  EXPECT_EQ(stream.saved(), before);
}

TEST_P(continuous, misuse_changes_nothing) {
  check_misuse<float>(id());
  check_misuse<double>(id());
}

HVL_STREAMS_FOR_EACH_ENGINE(continuous);

} // namespace
} // namespace hvl::streams::test
