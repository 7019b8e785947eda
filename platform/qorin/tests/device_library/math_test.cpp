#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>

#include <gtest/gtest.h>

#include <sycl/device_library.hpp>

namespace {

using sycl::half;
using sycl::access::address_space;
using sycl::access::decorated;

template <typename T>
auto pointer_to(T& object) {
  return sycl::address_space_cast<address_space::private_space, decorated::no>(&object);
}

/// Distance of `got` from `want` in units of the last place of T at `want`.
template <typename T>
long double ulps(T got, long double want) {
  int exponent = 0;
  std::frexp(want, &exponent);
  const int last = std::max(exponent - std::numeric_limits<T>::digits,
                            std::numeric_limits<T>::min_exponent - std::numeric_limits<T>::digits);
  return std::fabs(static_cast<long double>(got) - want) / std::ldexp(1.0L, last);
}

template <typename T>
bool same(T a, T b) {
  return a == b || (std::isnan(a) && std::isnan(b));
}

/// float's own lgamma is a few units off near its zeros.
template <typename T>
T log_gamma(T x) {
  return static_cast<T>(std::lgamma(static_cast<double>(x)));
}

// Volatile: the compiler rounds what it computes itself correctly, which the C library need not.
const volatile double arguments[] = {-1e300, -37.25, -2.5, -1.0, -0.75, -1e-9, -0.0, 0.0,  1e-9,
                                     0.3,    0.75,   1.0,  1.5,  2.5,   9.0,   1e3,  1e300};

// Every forwarded builtin is the C library's function of the same name, in the type of the argument, and its
// forms over vec, swizzle and marray give the scalar's bits.
#define EXPECT_FORWARDED(name, reference)                                                                    \
  for (const double x : arguments) {                                                                         \
    const auto f = static_cast<float>(x);                                                                    \
    EXPECT_TRUE(same(sycl::name(x), reference(x))) << #name << ' ' << x;                                     \
    EXPECT_TRUE(same(sycl::name(f), reference(f))) << #name << ' ' << f;                                     \
    EXPECT_TRUE(same<float>(sycl::name(half(f)), half(reference(static_cast<float>(half(f))))));             \
    const sycl::double3 v{1.0, x, x};                                                                        \
    EXPECT_TRUE(same(sycl::name(v)[1], sycl::name(x)) && same(sycl::name(v)[2], sycl::name(x))) << #name;    \
    EXPECT_TRUE(same(sycl::name(v.swizzle<2, 1>())[1], sycl::name(x))) << #name;                             \
    EXPECT_TRUE(same(sycl::name(sycl::marray<float, 5>(f))[4], sycl::name(f))) << #name;                     \
  }

TEST(math, forwards_functions_of_one_argument){
    EXPECT_FORWARDED(acos, std::acos) EXPECT_FORWARDED(acosh, std::acosh) EXPECT_FORWARDED(asin, std::asin)
        EXPECT_FORWARDED(asinh, std::asinh) EXPECT_FORWARDED(atan, std::atan) EXPECT_FORWARDED(
            atanh, std::atanh) EXPECT_FORWARDED(cbrt, std::cbrt) EXPECT_FORWARDED(ceil, std::ceil)
            EXPECT_FORWARDED(cos, std::cos) EXPECT_FORWARDED(cosh, std::cosh) EXPECT_FORWARDED(erf, std::erf)
                EXPECT_FORWARDED(erfc, std::erfc) EXPECT_FORWARDED(exp, std::exp)
                    EXPECT_FORWARDED(exp2, std::exp2) EXPECT_FORWARDED(expm1, std::expm1)
                        EXPECT_FORWARDED(fabs, std::fabs) EXPECT_FORWARDED(floor, std::floor)
                            EXPECT_FORWARDED(lgamma, log_gamma) EXPECT_FORWARDED(log, std::log)
                                EXPECT_FORWARDED(log10, std::log10) EXPECT_FORWARDED(log1p, std::log1p)
                                    EXPECT_FORWARDED(log2, std::log2) EXPECT_FORWARDED(logb, std::logb)
                                        EXPECT_FORWARDED(rint, std::rint) EXPECT_FORWARDED(round, std::round)
                                            EXPECT_FORWARDED(sin, std::sin) EXPECT_FORWARDED(sinh, std::sinh)
                                                EXPECT_FORWARDED(sqrt, std::sqrt)
                                                    EXPECT_FORWARDED(tan, std::tan)
                                                        EXPECT_FORWARDED(tanh, std::tanh)
                                                            EXPECT_FORWARDED(tgamma, std::tgamma)
                                                                EXPECT_FORWARDED(trunc, std::trunc)}

#define EXPECT_FORWARDED_2(name, reference)                                                                  \
  for (const double x : arguments)                                                                           \
    for (const double y : arguments) {                                                                       \
      EXPECT_TRUE(same(sycl::name(x, y), reference(x, y))) << #name << ' ' << x << ' ' << y;                 \
      const auto f = static_cast<float>(x);                                                                  \
      const auto g = static_cast<float>(y);                                                                  \
      EXPECT_TRUE(same(sycl::name(f, g), reference(f, g))) << #name << ' ' << f << ' ' << g;                 \
      EXPECT_TRUE(same(sycl::name(sycl::float4(f), sycl::float4(1, g, 2, 3))[1], sycl::name(f, g)));         \
    }

TEST(math, forwards_functions_of_two_arguments){
    EXPECT_FORWARDED_2(atan2, std::atan2) EXPECT_FORWARDED_2(copysign, std::copysign)
        EXPECT_FORWARDED_2(fdim, std::fdim) EXPECT_FORWARDED_2(fmax, std::fmax)
            EXPECT_FORWARDED_2(fmin, std::fmin) EXPECT_FORWARDED_2(fmod, std::fmod)
                EXPECT_FORWARDED_2(hypot, std::hypot) EXPECT_FORWARDED_2(nextafter, std::nextafter)
                    EXPECT_FORWARDED_2(pow, std::pow) EXPECT_FORWARDED_2(remainder, std::remainder)}

TEST(math, multiplies_and_adds_with_one_rounding) {
  const double x = 1.0 + 0x1p-30;
  EXPECT_EQ(sycl::fma(x, x, -1.0 - 0x1p-29), 0x1p-60);
  EXPECT_EQ(sycl::mad(x, x, -1.0 - 0x1p-29), 0.0); // rounds twice
  const float f = 1.0f + 0x1p-12f;
  EXPECT_EQ(sycl::fma(sycl::float2(f), sycl::float2(f), sycl::float2(-1.0f - 0x1p-11f))[1], 0x1p-24f);
}

TEST(math, takes_the_number_where_the_other_is_none) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  EXPECT_EQ(sycl::fmax(nan, 1.0f), 1.0f);
  EXPECT_EQ(sycl::fmin(1.0f, nan), 1.0f);
  EXPECT_TRUE(std::isnan(sycl::fmin(nan, nan)));
  EXPECT_EQ(sycl::fmax(sycl::float2(1.0f, nan), 0.5f)[1], 0.5f);
  EXPECT_EQ(sycl::maxmag(-3.0f, 2.0f), -3.0f);
  EXPECT_EQ(sycl::maxmag(-3.0f, 3.0f), 3.0f);
  EXPECT_EQ(sycl::minmag(-1.0, 2.0), -1.0);
  EXPECT_EQ(sycl::minmag(-2.0, 2.0), -2.0);
}

template <typename T>
class math_of : public testing::Test {};
using scalar_types = testing::Types<float, double>;
TYPED_TEST_SUITE(math_of, scalar_types);

TYPED_TEST(math_of, measures_angles_in_half_turns) {
  using T = TypeParam;
  const long double pi = 3.14159265358979323846264338327950288L;
  for (int i = -4000; i <= 4000; ++i) {
    const T x = static_cast<T>(i) * T(0.00137);
    const auto exact = static_cast<long double>(x);
    ASSERT_LE(ulps(sycl::sinpi(x), std::sin(pi * exact)), 4) << x;
    ASSERT_LE(ulps(sycl::cospi(x), std::cos(pi * exact)), 4) << x;
    ASSERT_LE(ulps(sycl::tanpi(x), std::tan(pi * exact)), 6) << x;
    ASSERT_LE(ulps(sycl::atanpi(x), std::atan(exact) / pi), 5) << x;
    ASSERT_LE(ulps(sycl::atan2pi(x, T(0.3)), std::atan2(exact, static_cast<long double>(T(0.3))) / pi), 6);
    const T s = static_cast<T>(i) / T(4000);
    ASSERT_LE(ulps(sycl::asinpi(s), std::asin(static_cast<long double>(s)) / pi), 5) << s;
    ASSERT_LE(ulps(sycl::acospi(s), std::acos(static_cast<long double>(s)) / pi), 5) << s;
  }
  for (const T x : {T(0), T(1), T(2), T(3), T(1 << 20), T(-5), T(-7.5), T((1 << 20) + 0.5), T(0.5), T(1.5)}) {
    const T turns = x - T(2) * std::floor(x / T(2));
    EXPECT_EQ(sycl::sinpi(x), turns == T(0.5) ? T(1) : turns == T(1.5) ? T(-1) : T(0)) << x;
    EXPECT_EQ(sycl::cospi(x), turns == T(0) ? T(1) : turns == T(1) ? T(-1) : T(0)) << x;
  }
  const T inf = std::numeric_limits<T>::infinity();
  EXPECT_TRUE(std::isnan(sycl::sinpi(inf)) && std::isnan(sycl::cospi(-inf)) && std::isnan(sycl::tanpi(inf)));
  EXPECT_EQ(sycl::tanpi(T(0.5)), inf);
}

TYPED_TEST(math_of, raises_to_powers_and_takes_roots) {
  using T = TypeParam;
  const T inf = std::numeric_limits<T>::infinity();
  for (int i = 1; i < 2000; ++i) {
    const T x = static_cast<T>(i) * T(0.731);
    const auto exact = static_cast<long double>(x);
    ASSERT_LE(ulps(sycl::rootn(x, 3), std::cbrt(exact)), 1) << x;
    ASSERT_LE(ulps(sycl::rootn(-x, 3), -std::cbrt(exact)), 1) << x;
    ASSERT_LE(ulps(sycl::rootn(x, 2), std::sqrt(exact)), 1) << x;
    ASSERT_LE(ulps(sycl::rootn(x, -7), std::pow(exact, -1.0L / 7)), 1) << x;
    ASSERT_LE(ulps(sycl::pown(x, 5), exact * exact * exact * exact * exact), 2) << x;
    ASSERT_LE(ulps(sycl::powr(x, T(1.5)), std::pow(exact, 1.5L)), 2) << x;
    ASSERT_LE(ulps(sycl::rsqrt(x), 1 / std::sqrt(exact)), 2) << x;
    const T small = static_cast<T>(i % 30) + static_cast<T>(i) / T(2048);
    ASSERT_LE(ulps(sycl::exp10(small), std::pow(10.0L, static_cast<long double>(small))), 2) << small;
  }
  const T large = std::numeric_limits<T>::max();
  EXPECT_LE(ulps(sycl::rootn(large, 3), std::cbrt(static_cast<long double>(large))), 1);
  EXPECT_TRUE(std::isnan(sycl::rootn(T(-8), 2)) && std::isnan(sycl::rootn(T(8), 0)));
  EXPECT_EQ(sycl::rootn(T(0), -1), inf);
  EXPECT_EQ(sycl::pown(T(-2), 3), T(-8));
  EXPECT_TRUE(std::isnan(sycl::powr(T(-2), T(3))) && std::isnan(sycl::powr(T(0), T(0))) &&
              std::isnan(sycl::powr(inf, T(0))) && std::isnan(sycl::powr(T(1), inf)));
  EXPECT_EQ(sycl::powr(T(0), T(2)), T(0));
  EXPECT_EQ(sycl::powr(T(-0.0), T(-1)), inf);
}

TYPED_TEST(math_of, splits_numbers_into_parts) {
  using T = TypeParam;
  T whole = T(77);
  EXPECT_EQ(sycl::fract(T(-1.25), pointer_to(whole)), T(0.75));
  EXPECT_EQ(whole, T(-2));
  EXPECT_LT(sycl::fract(-std::numeric_limits<T>::denorm_min(), pointer_to(whole)), T(1));
  EXPECT_EQ(whole, T(-1));
  EXPECT_EQ(sycl::modf(T(-1.25), pointer_to(whole)), T(-0.25));
  EXPECT_EQ(whole, T(-1));
  EXPECT_EQ(sycl::modf(-std::numeric_limits<T>::infinity(), pointer_to(whole)), T(0));
  EXPECT_TRUE(std::isinf(whole));
  EXPECT_EQ(sycl::sincos(T(0.7), pointer_to(whole)), sycl::sin(T(0.7)));
  EXPECT_EQ(whole, sycl::cos(T(0.7)));
  int number = 77;
  EXPECT_EQ(sycl::frexp(T(-12), pointer_to(number)), T(-0.75));
  EXPECT_EQ(number, 4);
  EXPECT_EQ(sycl::ldexp(T(-0.75), 4), T(-12));
  EXPECT_EQ(sycl::ilogb(T(12)), 3);
  EXPECT_EQ(sycl::lgamma_r(T(-0.5), pointer_to(number)), log_gamma(T(-0.5)));
  EXPECT_EQ(number, -1);
  int quotient = 77;
  EXPECT_EQ(sycl::remquo(T(11), T(4), pointer_to(quotient)), T(-1));
  EXPECT_EQ(quotient & 7, 3);

  using vec = sycl::vec<T, 2>;
  vec wholes(T(77));
  EXPECT_EQ(sycl::modf(vec(T(1.5), T(2.25)), pointer_to(wholes))[1], T(0.25));
  EXPECT_EQ(wholes[1], T(2));
  sycl::marray<int, 3> exponents(77);
  EXPECT_EQ(sycl::frexp(sycl::marray<T, 3>(T(8)), pointer_to(exponents))[2], T(0.5));
  EXPECT_EQ(exponents[2], 4);
  sycl::int2 quotients(77);
  EXPECT_EQ(sycl::remquo(vec(T(11)), vec(T(3), T(4)), pointer_to(quotients))[1], T(-1));
  EXPECT_EQ(quotients[1] & 7, 3);
  EXPECT_EQ(sycl::ldexp(vec(T(3)), sycl::int2(1, 2))[1], T(12));
  EXPECT_EQ(sycl::ldexp(vec(T(3)), 3)[0], T(24));
  EXPECT_EQ(sycl::ilogb(vec(T(1), T(0.25)))[1], -2);
}

TEST(math, takes_single_elements_of_vecs_for_numbers) {
  sycl::float4 v(0.25f, 2.0f, -3.0f, 9.0f);
  static_assert(std::is_same_v<decltype(sycl::sqrt(v.w())), float>);
  EXPECT_EQ(sycl::sqrt(v.w()), 3.0f);
  EXPECT_EQ(sycl::fma(v.x(), v.y(), v.z()), -2.5f);
  EXPECT_EQ(sycl::fmax(v.x(), 1.0f) + sycl::pown(v.y(), 3), 9.0f);
  EXPECT_EQ(sycl::clamp(v.z(), v.x(), v.y()), 0.25f);
  static_assert(std::is_same_v<decltype(sycl::isless(v.x(), v.y())), bool>);
  EXPECT_TRUE(sycl::isless(v.x(), v.y()) && sycl::isfinite(v.x()));
}

TEST(math, makes_quiet_nans) {
  EXPECT_EQ(sycl::bit_cast<std::uint32_t>(sycl::nan(5u)), 0x7FC00005u);
  EXPECT_EQ(sycl::bit_cast<std::uint64_t>(sycl::nan(std::uint64_t(6))), 0x7FF8000000000006u);
  EXPECT_TRUE(sycl::isnan(sycl::nan(std::uint16_t(1))));
  EXPECT_EQ(sycl::bit_cast<std::uint32_t>(sycl::nan(sycl::uint2(0u, 9u))[1]), 0x7FC00009u);
}

TEST(math, has_native_and_half_precision_forms) {
  EXPECT_FLOAT_EQ(sycl::native::exp(1.5f), std::exp(1.5f));
  EXPECT_FLOAT_EQ(sycl::native::divide(1.0f, 3.0f), 1.0f / 3.0f);
  EXPECT_FLOAT_EQ(sycl::half_precision::recip(sycl::float4(1, 2, 3, 4))[2], 1.0f / 3.0f);
  EXPECT_FLOAT_EQ(sycl::half_precision::powr(sycl::float2(2.0f), sycl::float2(0.5f))[1], std::sqrt(2.0f));
  EXPECT_FLOAT_EQ(sycl::native::sin(sycl::mfloat2(0.5f))[1], std::sin(0.5f));
}

} // namespace
