// The distributions whose word use follows from their parameters or goes beyond a word a value: the same bits on every
// device and in both forms, and engines that then stand where the documented words end.
#include <limits>

#include "support.hpp"

namespace kestro::hvl::rng::test {
namespace {

struct word_use {
  std::int64_t words, values;
  std::uint64_t of(std::int64_t n) const {
    return static_cast<std::uint64_t>((n + values - 1) / values * words);
  }
};

template <class Engine>
class distributions_test : public ::testing::Test {
 protected:
  // The first device's values through USM are the reference.
  template <class Distribution>
  static void check(const Distribution& distribution, word_use use) {
    check_words(distribution, [=](std::int64_t n) { return use.of(n); });
  }

  template <class Distribution, class Words>
  static void check_words(const Distribution& distribution, const Words& words_of) {
    auto cpu = devices().front().queue;
    for (const std::int64_t n : {1, 2, 3, 5, 1000, 30'011}) {
      SCOPED_TRACE(n);
      Engine reference = seeded<Engine>(cpu, 99), skipped = reference;
      const auto expected = usm_values(distribution, reference, cpu, n);
      usm_values(bits<>(), skipped, cpu, static_cast<std::int64_t>(words_of(n)));
      const auto behind = usm_values(bits<>(), skipped, cpu, 50);
      expect_same(usm_values(bits<>(), reference, cpu, 50), behind);
      on_every_device([&](sycl::queue& queue) {
        Engine in_usm = seeded<Engine>(queue, 99), in_buffer = in_usm;
        expect_same(usm_values(distribution, in_usm, queue, n), expected);
        expect_same(usm_values(bits<>(), in_usm, queue, 50), behind);
        expect_same(buffer_values(distribution, in_buffer, n), expected);
        expect_same(buffer_values(bits<>(), in_buffer, 50), behind);
      });
    }
  }

  template <class T>
  static void check_gamma(std::int64_t values) {
    for (const T alpha : {T(0.001), T(0.3), std::nextafter(T(1), T(0))})
      check(gamma<T>(alpha, T(-1.5), T(2)), {3 * values, values});
    for (const T alpha : {T(1), T(2.5), T(64), T(65), T(1e8)})
      check(gamma<T>(alpha, T(-1.5), T(2)), {2 * values, values});
    check(gamma<T, gamma_method::marsaglia_accurate>(T(0.3), T(-1.5), T(2)), {3 * values, values});
    check(gamma<T, gamma_method::marsaglia_accurate>(T(2.5), T(-1.5), T(2)), {2 * values, values});
  }
};

/// One of each way from words to values: at a position in words of 32 and 64 bits, along substreams, off a ring, and with
/// dimensions. The pinned checksums hold every pair of an engine and a distribution.
using each_frame = ::testing::Types<philox4x32x10, mcg59, mrg32k3a, mt19937, sobol>;
TYPED_TEST_SUITE(distributions_test, each_frame, engine_names);

TYPED_TEST(distributions_test, gamma_is_the_same_everywhere_and_takes_its_words) {
  this->template check_gamma<float>(1);
  this->template check_gamma<double>(2);
}

TYPED_TEST(distributions_test, beta_is_the_same_everywhere_and_takes_its_words) {
  const std::pair<double, double> shapes[] = {{1e-3, 1}, {0.5, 0.5}, {0.6, 1e8}, {2.5, 1.5}, {1e7, 3e6}};
  for (const auto& [p, q] : shapes) {
    this->check(beta<float>(static_cast<float>(p), static_cast<float>(q), -1.5f, 2.0f), {2, 1});
    this->check(beta<double>(p, q, -1.5, 2.0), {2, 1});
  }
}

// An odd dimension, too, in whose odd calls a word is wasted; the diagonal stands for its matrix.
TYPED_TEST(distributions_test, gaussian_mv_is_the_same_everywhere_and_takes_its_words) {
  const auto check = [&](const auto& distribution) {
    this->check_words(distribution, [&](std::int64_t n) {
      return static_cast<std::uint64_t>((n * distribution.dimen() + 1) / 2 * 2);
    });
  };
  check(gaussian_mv<float>({1.0f, 2.0f, 3.0f}, {1.0f, 0.5f, 2.0f, -1.0f, 0.0f, 0.25f}));
  check(gaussian_mv<double>({1.0, 2.0}, {1.0, 7.0, 0.5, 2.0}, gaussian_mv_storage::full));
  check(gaussian_mv<float>({1.0f}, {3.0f}, gaussian_mv_storage::diagonal));
  on_every_device([](sycl::queue& queue) {
    TypeParam engine = seeded<TypeParam>(queue, 4), again = engine;
    expect_same(usm_values(gaussian_mv<double>({1.0, 2.0}, {3.0, 5.0}, gaussian_mv_storage::diagonal), engine,
                           queue, 999),
                usm_values(gaussian_mv<double>({1.0, 2.0}, {3.0, 0.0, 5.0}), again, queue, 999));
  });
}

// The matrix lives as long as the work, whatever becomes of the distribution; copies share it.
TYPED_TEST(distributions_test, gaussian_mv_may_be_gone_before_its_values_are_there) {
  on_every_device([](sycl::queue& queue) {
    const std::vector<double> a(40, 1.0), t(820, 0.5);
    const gaussian_mv<double> kept(a, t);
    TypeParam engine = seeded<TypeParam>(queue, 4), again = engine;
    const auto expected = usm_values(kept, again, queue, 1000);
    double* const r = sycl::malloc_shared<double>(40'000, queue);
    sycl::event done;
    {
      const gate closed(queue);
      auto gone = std::make_unique<gaussian_mv<double>>(a, t);
      done = generate(*gone, engine, 1000, r, {closed.event()});
      gone.reset();
    }
    done.wait();
    expect_same(std::vector<double>(r, r + 40'000), expected);
    sycl::free(r, queue);
  });
}

TEST(gaussian_mv_of_bad_sizes, is_refused) {
  on_every_device([](sycl::queue& queue) {
    philox4x32x10 engine(queue, 1), untouched = engine;
    const gaussian_mv<float> pairs;
    sycl::buffer<float, 1> buffer{sycl::range<1>(9)};
    for (const std::int64_t n :
         {std::int64_t{5}, std::int64_t{-1}, std::numeric_limits<std::int64_t>::max() / 2 + 1})
      EXPECT_EQ(refusal<invalid_argument>([&] { generate(pairs, engine, n, buffer); }),
                "kestro::hvl::rng::generate: invalid argument: n");
    expect_same(usm_values(bits<>(), engine, queue, 9), usm_values(bits<>(), untouched, queue, 9));
    generate(pairs, engine, 4, buffer);
  });
}

// Both methods of counting, also in one vector; one outcome only.
TYPED_TEST(distributions_test, multinomial_is_the_same_everywhere_and_takes_its_words) {
  const auto check = [&](const auto& distribution) {
    this->check_words(distribution,
                      [&](std::int64_t n) { return static_cast<std::uint64_t>(n * distribution.dimen()); });
  };
  check(multinomial<int>(20, {0.1, 0.0, 0.55, 0.35}));
  check(multinomial<unsigned>(1000, {0.01, 0.6, 0.2, 0.014, 0.176}));
  check(multinomial<int>(2147483647, {1e-9, 0.7, 0.3 - 1e-9}));
  check(multinomial<int>(7, {1.0}));
}

// Its table lives as long as the work, whatever becomes of the distribution.
TYPED_TEST(distributions_test, multinomial_may_be_gone_before_its_values_are_there) {
  on_every_device([](sycl::queue& queue) {
    const std::vector<double> p(40, 0.025);
    const multinomial<int> kept(900, p);
    TypeParam engine = seeded<TypeParam>(queue, 4), again = engine;
    const auto expected = usm_values(kept, again, queue, 1000);
    int* const r = sycl::malloc_shared<int>(40'000, queue);
    sycl::event done;
    {
      const gate closed(queue);
      auto gone = std::make_unique<multinomial<int>>(900, p);
      done = generate(*gone, engine, 1000, r, {closed.event()});
      gone.reset();
    }
    done.wait();
    expect_same(std::vector<int>(r, r + 40'000), expected);
    sycl::free(r, queue);
  });
}

TYPED_TEST(distributions_test, chi_square_is_gamma) {
  const auto compare = [](auto chi_square, auto gamma) {
    on_every_device([&](sycl::queue& queue) {
      TypeParam engine = seeded<TypeParam>(queue, 4), again = engine;
      const auto expected = usm_values(gamma, again, queue, 5001);
      expect_same(usm_values(chi_square, engine, queue, 5001), expected);
      expect_same(buffer_values(bits<>(), engine, 50), usm_values(bits<>(), again, queue, 50));
    });
  };
  for (const int v : {1, 2, 129}) {
    compare(chi_square<float>(v), gamma<float>(static_cast<float>(v) / 2, 0, 2));
    compare(chi_square<double>(v), gamma<double>(v / 2.0, 0, 2));
  }
}

TYPED_TEST(distributions_test, geometric_is_the_same_everywhere_and_takes_its_words) {
  for (const double p : {1e-10, 1e-6, 0.3, 1.0})
    this->check(geometric<int>(p), {2, 1});
}

TYPED_TEST(distributions_test, discrete_ones_are_the_same_everywhere_and_take_their_words) {
  for (const double p : {0.0, 1e-9, 0.3, 1.0})
    this->check(bernoulli<int>(p), {2, 1});
  for (const double lambda : {0.0, 1e-3, 1.0, 77.7, 1048576.0, std::nextafter(1048576.0, 2e6), 1e8, 2.2e9})
    this->check(poisson<int>(lambda), {2, 1});
  this->check(poisson_v<int>({0.0, 1e-3, 0.5, 9.999, 10.0, 300.0, 1e9}), {2, 1});
  this->check(poisson_v<int>(std::vector<double>(5000, 3.3)), {2, 1});
  this->check(binomial<int>(20, 0.3), {2, 1});
  this->check(binomial<int>(2147483647, 0.99), {2, 1});
  this->check(hypergeometric<int>(100, 40, 90), {2, 1});
  this->check(hypergeometric<int>(2147483647, 1000000000, 99999999), {2, 1});
  this->check(negative_binomial<int>(2.5, 0.1), {2, 1});
  this->check(negative_binomial<int>(0.3, 1e-3), {6, 1});
  this->check(negative_binomial<int>(1e4, 1e-3), {6, 1});
}

// Groups of three and of six words do not divide what a kernel makes at a time, nor the parts of a call that is cut.
TYPED_TEST(distributions_test, long_calls_of_odd_groups_are_the_same_on_both_devices) {
  constexpr std::int64_t n = 3'000'001;
  auto cpu = devices().front().queue, gpu = devices().back().queue;
  const auto compare = [&](const auto& distribution) {
    TypeParam on_cpu = seeded<TypeParam>(cpu, 3), on_gpu = seeded<TypeParam>(gpu, 3);
    expect_same(usm_values(distribution, on_gpu, gpu, n), usm_values(distribution, on_cpu, cpu, n));
    expect_same(usm_values(bits<>(), on_gpu, gpu, 50), usm_values(bits<>(), on_cpu, cpu, 50));
  };
  compare(gamma<float>(0.3f, 0.0f, 1.0f));
  compare(gamma<double>(0.3, 0.0, 1.0));
}

TYPED_TEST(distributions_test, geometric_has_the_same_values_in_both_types) {
  on_every_device([](sycl::queue& queue) {
    TypeParam engine = seeded<TypeParam>(queue, 4), again = engine;
    const auto values = usm_values(geometric<int>(1e-9), engine, queue, 5001);
    const auto unsigned_values = usm_values(geometric<unsigned>(1e-9), again, queue, 5001);
    expect_same(unsigned_values, std::vector<unsigned>(values.begin(), values.end()));
    EXPECT_TRUE(std::count(values.begin(), values.end(), std::numeric_limits<int>::max()) > 0);
  });
}

// Tables are shared, built by whoever comes first, and outlive the distribution while work reads them.
TYPED_TEST(distributions_test, copies_of_a_distribution_share_what_outlives_them) {
  constexpr std::int64_t n = 5001;
  on_every_device([](sycl::queue& queue) {
    TypeParam engine = seeded<TypeParam>(queue, 4), again = engine;
    const auto expected = usm_values(poisson<int>(1e4), again, queue, 2 * n);
    int* const memory = sycl::malloc_shared<int>(2 * n, queue);
    {
      gate closed(queue);
      auto distribution = std::make_unique<poisson<int>>(1e4);
      poisson<int> moved = std::move(*distribution);
      generate(moved, engine, n, memory, {closed.event()});
      generate(*distribution, engine, n, memory + n, {closed.event()});
      distribution.reset();
      moved = poisson<int>(3);
    }
    queue.wait();
    expect_same(std::vector<int>(memory, memory + 2 * n), expected);
    sycl::free(memory, queue);
  });
}

TYPED_TEST(distributions_test, discrete_ones_have_the_same_values_in_both_types) {
  on_every_device([](sycl::queue& queue) {
    const auto check = [&](const auto& of_int, const auto& of_unsigned) {
      TypeParam engine = seeded<TypeParam>(queue, 4), again = engine;
      const auto values = usm_values(of_int, engine, queue, 5001);
      expect_same(usm_values(of_unsigned, again, queue, 5001),
                  std::vector<unsigned>(values.begin(), values.end()));
    };
    check(bernoulli<int>(0.2), bernoulli<unsigned>(0.2));
    check(poisson<int>(20), poisson<unsigned>(20));
    check(poisson_v<int>({20, 0.1}), poisson_v<unsigned>({20, 0.1}));
    check(binomial<int>(2147483647, 1), binomial<unsigned>(2147483647, 1));
    check(multinomial<int>(2147483647, {0.0, 1.0}), multinomial<unsigned>(2147483647, {0.0, 1.0}));
    check(hypergeometric<int>(100, 40, 90), hypergeometric<unsigned>(100, 40, 90));
    check(negative_binomial<int>(1, 1e-9), negative_binomial<unsigned>(1, 1e-9));
  });
}

// Words of the substreams' rows are one or two a value.
TEST(distributions_in_substreams, are_refused_where_a_row_has_too_few_words) {
  on_every_device([](sycl::queue& queue) {
    const auto check = [&](const auto& distribution, auto mode) {
      typename std::decay_t<decltype(distribution)>::result_type value = 7;
      mrg32k3a engine(queue, 7, mode), untouched = engine;
      EXPECT_EQ(
          refusal<invalid_argument>([&] { generate(distribution, engine, 1, &value); }),
          "kestro::hvl::rng::generate: invalid argument: mrg32k3a with optimal/custom modes doesn't support "
          "this distribution");
      expect_same(usm_values(uniform<float>(), engine, queue, 9),
                  usm_values(uniform<float>(), untouched, queue, 9));
      EXPECT_TRUE(value == 7);
    };
    check(gamma<float>(), mrg32k3a_mode::optimal{});
    check(gamma<double, gamma_method::marsaglia_accurate>(0.5, 0.0, 1.0), mrg32k3a_mode::custom{3});
    check(beta<double>(), mrg32k3a_mode::optimal{});
    check(gaussian_mv<float>({0.0f}, {1.0f}), mrg32k3a_mode::optimal{});
    check(chi_square<float>(1), mrg32k3a_mode::custom{3});
    check(geometric<int>(), mrg32k3a_mode::optimal{});
    check(geometric<unsigned>(), mrg32k3a_mode::custom{3});
    check(bernoulli<int>(), mrg32k3a_mode::optimal{});
    check(poisson<int>(), mrg32k3a_mode::optimal{});
    check(poisson_v<int>(), mrg32k3a_mode::optimal{});
    check(binomial<int>(), mrg32k3a_mode::optimal{});
    check(multinomial<int>(3, {1.0}), mrg32k3a_mode::optimal{});
    check(hypergeometric<int>(), mrg32k3a_mode::optimal{});
    check(negative_binomial<int>(), mrg32k3a_mode::optimal{});
    check(negative_binomial<int>(1, 1e-3), mrg32k3a_mode::optimal{});
  });
}

template <class Distribution, class... Parameters>
std::string refused(Parameters... parameters) {
  return refusal<invalid_argument>([&] { Distribution d(parameters...); });
}

TEST(distributions_of_bad_parameters, are_refused_by_name) {
  const std::string gamma_text = "kestro::hvl::rng::gamma: invalid argument: ";
  const std::string p_text = "kestro::hvl::rng::geometric: invalid argument: p is not in (0, 1]";
  const double nan = std::numeric_limits<double>::quiet_NaN(),
               infinite = std::numeric_limits<double>::infinity();
  for (const double bad : {0.0, -1.0, nan, infinite}) {
    EXPECT_EQ(refused<gamma<double>>(bad, 0.0, 1.0), gamma_text + "alpha <= 0");
    EXPECT_EQ(refused<gamma<double>>(1.0, 0.0, bad), gamma_text + "beta <= 0");
    EXPECT_EQ(refused<gamma<float>>(static_cast<float>(bad), 0.0f, 1.0f), gamma_text + "alpha <= 0");
    EXPECT_EQ(refused<geometric<int>>(bad), p_text);
    EXPECT_EQ(refused<geometric<unsigned>>(bad), p_text);
  }
  EXPECT_EQ(refused<gamma<double>>(1.0, infinite, 1.0), gamma_text + "a is not finite");
  const std::string beta_text = "kestro::hvl::rng::beta: invalid argument: ";
  EXPECT_EQ(refused<beta<float>>(0.0f, 1.0f, 0.0f, 1.0f), beta_text + "p <= 0");
  EXPECT_EQ(refused<beta<double>>(1.0, nan, 0.0, 1.0), beta_text + "q <= 0");
  EXPECT_EQ(refused<beta<double>>(1.0, 1.0, -infinite, 1.0), beta_text + "a is not finite");
  EXPECT_EQ(refused<beta<double>>(1.0, 1.0, 0.0, -1.0), beta_text + "beta <= 0");
  EXPECT_EQ(refused<beta<float>>(1.0f, 1.0f, 3e38f, 3e38f), beta_text + "a + beta is not finite");
  const std::string vector_text = "kestro::hvl::rng::gaussian_mv: invalid argument: ";
  using matrix = std::vector<double>;
  EXPECT_EQ(refused<gaussian_mv<double>>(matrix(), matrix()), vector_text + "dimen <= 0");
  EXPECT_EQ(refused<gaussian_mv<double>>(matrix(2), matrix(4)), vector_text + "size of t");
  EXPECT_EQ(refused<gaussian_mv<double>>(matrix(2), matrix(3), gaussian_mv_storage::full),
            vector_text + "size of t");
  EXPECT_EQ(refused<gaussian_mv<double>>(matrix(1), matrix(1), static_cast<gaussian_mv_storage>(3)),
            vector_text + "mstorage is none of 0, 1, 2");
  EXPECT_EQ(refused<gaussian_mv<double>>(matrix(1, nan), matrix(1)), vector_text + "a is not finite");
  EXPECT_EQ(refused<gaussian_mv<double>>(matrix(1), matrix(1, infinite)), vector_text + "t is not finite");
  EXPECT_EQ(refused<gaussian_mv<double>>(matrix(2), matrix({1, nan, 0, 1}), gaussian_mv_storage::full),
            "no exception");
  for (const int bad : {0, -1, std::numeric_limits<int>::min()})
    EXPECT_EQ(refused<chi_square<float>>(bad), "kestro::hvl::rng::chi_square: invalid argument: v <= 0");
  for (const double bad : {-1e-300, std::nextafter(1.0, 2.0), nan, infinite})
    EXPECT_EQ(refused<bernoulli<int>>(bad),
              "kestro::hvl::rng::bernoulli: invalid argument: p is not in [0, 1]");
  for (const double bad : {-1e-300, nan, infinite}) {
    EXPECT_EQ(refused<poisson<int>>(bad), "kestro::hvl::rng::poisson: invalid argument: lambda < 0");
    EXPECT_EQ(refused<poisson_v<int>>(std::vector{1.0, bad}),
              "kestro::hvl::rng::poisson_v: invalid argument: lambda < 0");
  }
  EXPECT_EQ(refused<poisson_v<int>>(std::vector<double>()),
            "kestro::hvl::rng::poisson_v: invalid argument: size of lambda < 0");
  const std::string hypergeometric_text = "kestro::hvl::rng::hypergeometric: invalid argument: ";
  EXPECT_EQ(refused<hypergeometric<int>>(-1, 0, 0), hypergeometric_text + "l < 0");
  for (const int bad : {-1, 6}) {
    EXPECT_EQ(refused<hypergeometric<int>>(5, bad, 0), hypergeometric_text + "s is not in [0, l]");
    EXPECT_EQ(refused<hypergeometric<int>>(5, 0, bad), hypergeometric_text + "m is not in [0, l]");
  }
  const std::string binomial_text = "kestro::hvl::rng::binomial: invalid argument: ";
  EXPECT_EQ(refused<binomial<int>>(-1, 0.5), binomial_text + "ntrial < 0");
  const std::string multinomial_text = "kestro::hvl::rng::multinomial: invalid argument: ";
  EXPECT_EQ(refused<multinomial<int>>(-1, std::vector{1.0}), multinomial_text + "ntrial < 0");
  EXPECT_EQ(refused<multinomial<int>>(1, std::vector<double>()), multinomial_text + "size of p < 1");
  for (const double bad : {-1e-300, nan, infinite, 1.5})
    EXPECT_EQ(refused<multinomial<int>>(1, std::vector{0.5, bad, 0.5}),
              multinomial_text + "p is not in [0, 1]");
  for (const double bad : {0.0, 0.5 - 1.1e-8, 0.5 + 1.1e-8, 1.0})
    EXPECT_EQ(refused<multinomial<int>>(1, std::vector{0.5, bad}),
              multinomial_text + "p does not add up to 1");
  EXPECT_EQ(refused<multinomial<int>>(1, std::vector{0.5, 0.5 - 0.9e-8}), "no exception");
  const std::string negative_text = "kestro::hvl::rng::negative_binomial: invalid argument: ";
  for (const double bad : {-1e-300, nan, infinite}) {
    EXPECT_EQ(refused<binomial<int>>(1, bad), binomial_text + "p is not in [0, 1]");
    EXPECT_EQ(refused<negative_binomial<int>>(bad, 0.5), negative_text + "a <= 0");
    EXPECT_EQ(refused<negative_binomial<int>>(1, bad), negative_text + "p is not in (0, 1]");
  }
  EXPECT_EQ(refused<geometric<int>>(std::nextafter(1.0, 2.0)), p_text);
  EXPECT_EQ(refused<geometric<int>>(1.0), "no exception");
}

} // namespace
} // namespace kestro::hvl::rng::test
