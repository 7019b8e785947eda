// The ends of the uniforms, and the parameters' extremes: every result is the formula's, never NaN, and infinite only
// where the exact value is too great.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "hvl/math/transforms.hpp"

namespace hvl::math {
namespace {

template <class T>
class end_points : public ::testing::Test {};
using result_types = ::testing::Types<float, double>;
TYPED_TEST_SUITE(end_points, result_types);

template <class T>
constexpr T greatest = std::numeric_limits<T>::max();

TYPED_TEST(end_points, logarithm) {
  using T = TypeParam;
  using O = scalar_ops<T>;
  EXPECT_EQ(log_guarded<O>(T(0)), sizeof(T) == 4 ? T(-103.27893f) : T(-744.4400719213812));
  EXPECT_EQ(log_of_uniform<O>(T(0)), log_guarded<O>(T(0)));
  EXPECT_EQ((log_of_uniform<O, -1>(T(0))), -log_guarded<O>(T(0)));
  EXPECT_EQ((log_of_uniform<O, -2>(T(0))), -2 * log_guarded<O>(T(0)));
  EXPECT_EQ(log_guarded<O>(-T(0)), log_of_zero<T>);
  EXPECT_EQ(log_guarded<O>(T(1)), T(0));
  EXPECT_EQ(log_of_uniform<O>(T(1)), T(0));
  EXPECT_TRUE(std::isnan(log_guarded<O>(std::numeric_limits<T>::quiet_NaN())));
}

TYPED_TEST(end_points, quarters_of_a_turn) {
  using T = TypeParam;
  const T quarters[][3] = {{0, 0, 1}, {T(0.25), 1, 0}, {T(0.5), 0, -1}, {T(0.75), -1, 0}, {1, 0, 1}};
  for (const auto& [turns, sine, cosine] : quarters) {
    T s = 9, c = 9;
    sincos_turns<scalar_ops<T>>(turns, s, c);
    EXPECT_EQ(s, sine) << turns;
    EXPECT_EQ(c, cosine) << turns;
  }
}

TYPED_TEST(end_points, exponential_function) {
  using T = TypeParam;
  using O = scalar_ops<T>;
  constexpr T infinity = std::numeric_limits<T>::infinity();
  EXPECT_EQ(exp<O>(T(0)), T(1));
  EXPECT_EQ(exp<O>(infinity), infinity);
  EXPECT_EQ(exp<O>(greatest<T>), infinity);
  EXPECT_EQ(exp<O>(-infinity), T(0));
  EXPECT_TRUE(std::isnan(exp<O>(std::numeric_limits<T>::quiet_NaN())));
  const T log_of_greatest = sizeof(T) == 4 ? T(88.72283f) : T(709.782712893384);
  EXPECT_LT(exp<O>(log_of_greatest), infinity);
  EXPECT_EQ(exp<O>(std::nextafter(log_of_greatest, infinity)), infinity);
  // exp overflows, the product does not
  const T x = log_of_greatest + 5;
  const T scale = std::ldexp(T(1), -40);
  EXPECT_NEAR(std::log(exp_affine<O>(x, scale, T(0))) + 40 * std::log(T(2)), x, x * T(1e-6));
}

TYPED_TEST(end_points, gaussian) {
  using T = TypeParam;
  using O = scalar_ops<T>;
  const T radius = std::sqrt(-2 * log_of_zero<T>);
  T first = -99, second = -99;
  gaussian_box_muller2<O>(T(0), T(0), T(3), T(2), first, second);
  EXPECT_EQ(first, T(3));
  EXPECT_EQ(second, std::fma(T(2), radius, T(3)));
  gaussian_box_muller2<O>(T(1), T(0.3), T(3), T(2), first, second);
  EXPECT_EQ(first, T(3));
  EXPECT_EQ(second, T(3));
  gaussian_box_muller2<O>(T(0.25), T(0.7), T(3), T(2), first, second);
  EXPECT_EQ(first, gaussian_box_muller<O>(T(0.25), T(0.7), T(3), T(2)));
  // the greatest deviation whose result is still a number
  gaussian_box_muller2<O>(T(0), T(1) / 16, T(0), greatest<T> / 64, first, second);
  EXPECT_TRUE(std::isfinite(first));
  EXPECT_TRUE(std::isfinite(second));
}

TYPED_TEST(end_points, inverse_error_function) {
  using T = TypeParam;
  using O = scalar_ops<T>;
  const T last = std::nextafter(T(1), T(0));
  EXPECT_EQ(erfinv<O>(T(1)), erfinv<O>(last));
  EXPECT_EQ(erfinv<O>(T(-1)), -erfinv<O>(last));
  EXPECT_EQ(erfinv<O>(T(0)), T(0));
  if constexpr (sizeof(T) == 4) {
    EXPECT_EQ(erfinv<O>(T(1)), 3.832507f);
  }
  EXPECT_EQ(gaussian_icdf<O>(T(-1), T(1), icdf_scale(T(2))),
            std::fma(-icdf_scale(T(2)), erfinv<O>(last), T(1)));
  EXPECT_EQ(icdf_scale(T(2)), T(2) * T(1.4142135623730951));
  EXPECT_EQ(gaussian_icdf<O>(T(0), T(1), icdf_scale(greatest<T>)), T(1));
}

TYPED_TEST(end_points, inverse_cdf_members) {
  using T = TypeParam;
  using O = scalar_ops<T>;
  EXPECT_EQ(exponential_icdf<O>(T(0), T(1), T(2)), std::fma(T(-2), log_of_zero<T>, T(1)));
  EXPECT_EQ(exponential_icdf<O>(T(1), T(1), T(2)), T(1));
  const T half = T(0.5);
  const T above = laplace_icdf<O>(T(0.25), half, T(1), T(2));
  EXPECT_EQ(above, std::fma(T(-2), log<O>(T(0.25)), T(1)));
  EXPECT_EQ(laplace_icdf<O>(T(0.25), std::nextafter(half, T(1)), T(1), T(2)),
            std::fma(T(2), log<O>(T(0.25)), T(1)));
  EXPECT_EQ(rayleigh_icdf<O>(T(0), T(1), T(2)), std::fma(T(2), std::sqrt(-log_of_zero<T>), T(1)));
  EXPECT_EQ(rayleigh_icdf<O>(T(1), T(1), T(2)), T(1));
  EXPECT_NEAR(rayleigh_icdf<O>(std::exp(T(-1)), T(5), T(1)), T(6), 4 * std::numeric_limits<T>::epsilon());
  EXPECT_EQ(gumbel_icdf<O>(T(0), T(0), T(1)), log<O>(-log_of_zero<T>));
  EXPECT_EQ(gumbel_icdf<O>(T(1), T(0), T(1)), log_of_zero<T>);
  EXPECT_EQ(raised_to<O>(T(0.5), T(1)), T(1));
  EXPECT_EQ(raised_to<O>(T(1.5), T(1)), T(1.5));
}

TYPED_TEST(end_points, weibull_at_extreme_shapes) {
  using T = TypeParam;
  using O = scalar_ops<T>;
  const T least = std::numeric_limits<T>::denorm_min();
  for (const T alpha : {least, T(1), greatest<T>}) {
    const double exponent = weibull_exponent(alpha);
    ASSERT_TRUE(std::isfinite(exponent));
    EXPECT_EQ(weibull_icdf<O>(T(1), exponent, T(7), T(2)), T(7));
    for (const T u : {T(0), T(0.25), T(0.5), 1 - std::numeric_limits<T>::epsilon()})
      EXPECT_FALSE(std::isnan(weibull_icdf<O>(u, exponent, T(7), T(2)))) << alpha << ' ' << u;
  }
  EXPECT_EQ(weibull_icdf<O>(T(0), weibull_exponent(T(1)), T(0), T(1)), -log_of_zero<T>);
  // the power alone would overflow
  const double exponent = sizeof(T) == 4 ? 20 : 110;
  const T small = sizeof(T) == 4 ? T(1e-20) : T(1e-100);
  EXPECT_TRUE(std::isfinite(weibull_icdf<O>(T(0), exponent, T(0), small)));
  EXPECT_FALSE(std::isfinite(weibull_icdf<O>(T(0), exponent, T(0), T(1e20) * T(1e10))));
}

TYPED_TEST(end_points, logarithm_of_one_and_more) {
  using T = TypeParam;
  using O = scalar_ops<T>;
  EXPECT_EQ(log1p<O>(T(0)), T(0));
  EXPECT_EQ(log1p<O>(std::numeric_limits<T>::min()), std::numeric_limits<T>::min());
  EXPECT_EQ(log1p<O>(greatest<T>), log<O>(greatest<T>));
}

TYPED_TEST(end_points, gamma_at_extreme_words_and_parameters) {
  using T = TypeParam;
  using O = scalar_ops<T>;
  const T least = std::numeric_limits<T>::denorm_min();
  const std::uint32_t own[4] = {1, 2, 3, 4};
  for (const T alpha : {least, T(1e-3), std::nextafter(T(1), T(0)), T(1), T(64), T(1e8), greatest<T>})
    for (const T a : {T(0), T(-3), T(1e6), greatest<T>, -greatest<T>})
      for (const T beta : {least, T(1), greatest<T>}) {
        const auto c = gamma_constants_of<T>(alpha, a, beta);
        for (const T e : {T(-8), T(-4), T(-1), T(0), T(0.9), T(8)})
          for (const T u : {T(0), T(0.5), T(1)})
            for (const T power : {T(0), T(0.5), T(1)}) {
              const T value = gamma_marsaglia<O>(e, u, power, own, 0, c);
              EXPECT_FALSE(std::isnan(value)) << alpha << ' ' << a << ' ' << beta << ' ' << e << ' ' << u;
              EXPECT_GE(raised_to<O>(value, a), a);
              if (alpha < 64) {
                EXPECT_GE(value, a) << alpha << ' ' << beta << ' ' << e << ' ' << u << ' ' << power;
              }
            }
      }
  // a word of 0 is no outlier of the normal numbers
  EXPECT_NEAR(gamma_normal_pair<O>(T(0), T(0), T(0x1p-32)).cosine, std::sqrt(33 * std::log(T(2))), T(1e-6));
  // the power of 0 vanishes, that of 1 changes nothing
  const auto half = gamma_constants_of<T>(T(0.5), T(3), T(2));
  EXPECT_EQ(gamma_marsaglia<O>(T(0.1), T(0.5), T(0), own, 0, half), T(3));
  EXPECT_EQ(gamma_marsaglia<O>(T(0.1), T(0.5), T(1), own, 0, half),
            gamma_squeezed<O>(T(0.1), T(0.5), half).core + T(3));
  // with a shape this small nearly all underflow, save where the scale brings them back
  const auto tiny = gamma_constants_of<T>(sizeof(T) == 4 ? T(0.01) : T(0.001), T(0), greatest<T> / 64);
  EXPECT_LT(gamma_marsaglia<O>(T(0), T(0.5), T(0.01), own, 0, tiny), std::numeric_limits<T>::min());
  EXPECT_GT(gamma_marsaglia<O>(T(0), T(0.5), T(0.25), own, 0, tiny), T(0));
}

TEST(geometric, ends) {
  using O = scalar_ops<double>;
  for (const double u : {0.0, 0x1p-64, 0.5, 1.0})
    EXPECT_EQ(static_cast<int>(geometric_icdf<O>(u, geometric_scale(1.0))), 0);
  EXPECT_EQ(static_cast<int>(geometric_icdf<O>(1.0, geometric_scale(1e-10))), 0);
  EXPECT_EQ(static_cast<int>(geometric_icdf<O>(0.0, geometric_scale(1e-10))), 2147483647);
  EXPECT_EQ(static_cast<int>(geometric_icdf<O>(0.0, geometric_scale(0.5))), 1074);
  EXPECT_EQ(static_cast<int>(geometric_icdf<O>(0.25, geometric_scale(0.5))), 2);
}

TEST(cauchy, stays_finite_and_ordered_at_both_ends) {
  using O = scalar_ops<double>;
  EXPECT_EQ(cauchy_icdf<O>(0.0, 3.0, 2.0), 3.0);
  const double top = cauchy_icdf<O>(cauchy_high, 0.0, 1.0);
  EXPECT_GT(top, 1.6e16);
  EXPECT_LT(top, 1.7e16);
  EXPECT_EQ(cauchy_icdf<O>(cauchy_low, 0.0, 1.0), -top);
}

} // namespace
} // namespace hvl::math
