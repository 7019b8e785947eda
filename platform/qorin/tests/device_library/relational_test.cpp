#include <cmath>
#include <limits>
#include <type_traits>

#include <gtest/gtest.h>

#include <sycl/device_library.hpp>

namespace {

template <typename T>
class relational_of : public testing::Test {};
using floating_types = testing::Types<float, double, sycl::half>;
TYPED_TEST_SUITE(relational_of, floating_types);

TYPED_TEST(relational_of, classifies_every_kind_of_number) {
  using T = TypeParam;
  using limits = std::numeric_limits<T>;
  const T values[] = {limits::quiet_NaN(),
                      limits::infinity(),
                      -limits::infinity(),
                      limits::denorm_min(),
                      limits::min(),
                      -limits::max(),
                      T(0),
                      -T(0),
                      T(-1)};
  const bool nan[] = {true, false, false, false, false, false, false, false, false};
  const bool inf[] = {false, true, true, false, false, false, false, false, false};
  const bool finite[] = {false, false, false, true, true, true, true, true, true};
  const bool normal[] = {false, false, false, false, true, true, false, false, true};
  const bool negative[] = {false, false, true, false, false, true, false, true, true};
  for (int i = 0; i < 9; ++i) {
    EXPECT_EQ(sycl::isnan(values[i]), nan[i]) << i;
    EXPECT_EQ(sycl::isinf(values[i]), inf[i]) << i;
    EXPECT_EQ(sycl::isfinite(values[i]), finite[i]) << i;
    EXPECT_EQ(sycl::isnormal(values[i]), normal[i]) << i;
    EXPECT_EQ(sycl::signbit(values[i]), negative[i]) << i;
    const sycl::vec<T, 2> v(T(1), values[i]);
    EXPECT_EQ(sycl::isnan(v)[1], nan[i] ? -1 : 0);
    EXPECT_EQ(sycl::isnormal(v)[0], -1);
    EXPECT_EQ(sycl::isinf(sycl::marray<T, 2>(values[i]))[1], inf[i]);
  }
}

TYPED_TEST(relational_of, compares_with_and_without_nan) {
  using T = TypeParam;
  const T nan = std::numeric_limits<T>::quiet_NaN();
  const T a[] = {T(1), T(2), T(1), nan, T(1), nan};
  const T b[] = {T(2), T(1), T(1), T(1), nan, nan};
  for (int i = 0; i < 6; ++i) {
    const bool ordered = i < 3;
    EXPECT_EQ(sycl::isequal(a[i], b[i]), i == 2);
    EXPECT_EQ(sycl::isnotequal(a[i], b[i]), i != 2);
    EXPECT_EQ(sycl::isless(a[i], b[i]), i == 0);
    EXPECT_EQ(sycl::islessequal(a[i], b[i]), i == 0 || i == 2);
    EXPECT_EQ(sycl::isgreater(a[i], b[i]), i == 1);
    EXPECT_EQ(sycl::isgreaterequal(a[i], b[i]), i == 1 || i == 2);
    EXPECT_EQ(sycl::islessgreater(a[i], b[i]), i == 0 || i == 1);
    EXPECT_EQ(sycl::isordered(a[i], b[i]), ordered);
    EXPECT_EQ(sycl::isunordered(a[i], b[i]), !ordered);
  }
  const auto answers = sycl::isless(sycl::vec<T, 2>(T(1), nan), sycl::vec<T, 2>(T(2)));
  static_assert(sizeof(answers[0]) == sizeof(T));
  EXPECT_EQ(answers[0], -1);
  EXPECT_EQ(answers[1], 0);
}

TEST(relational, asks_for_any_and_all) {
  EXPECT_EQ(sycl::any(sycl::int3(0, 1, 0)), 0); // only the sign bit counts
  EXPECT_EQ(sycl::any(sycl::int3(0, -1, 0)), 1);
  EXPECT_EQ(sycl::all(sycl::int3(-1, -1, 0)), 0);
  EXPECT_EQ(sycl::all(sycl::float4(1) < sycl::float4(2)), 1);
  EXPECT_TRUE(sycl::any(sycl::mbool3(false, false, true)));
  EXPECT_FALSE(sycl::all(sycl::mbool3(false, false, true)));
  EXPECT_TRUE(sycl::any(true) && !sycl::all(false));
}

TEST(relational, selects_bits_and_elements) {
  EXPECT_EQ(sycl::bitselect(0x00FFu, 0xFF00u, 0x0FF0u), 0xFF0Fu & 0x0F0Fu);
  EXPECT_EQ(sycl::bitselect(1.0f, -2.0f, -0.0f), -1.0f); // the sign of the second, the rest of the first
  EXPECT_EQ(sycl::bitselect(sycl::int2(0), sycl::int2(-1), sycl::int2(5, 6))[1], 6);
  EXPECT_EQ(sycl::select(1.5f, 2.5f, true), 2.5f);
  EXPECT_EQ(sycl::select(1, 2, false), 1);
  const sycl::float2 picked = sycl::select(sycl::float2(1, 2), sycl::float2(3, 4), sycl::int2(-1, 1));
  EXPECT_EQ(picked[0], 3.0f);
  EXPECT_EQ(picked[1], 2.0f); // only the sign bit counts
  EXPECT_EQ(sycl::select(sycl::float2(1), sycl::float2(2), sycl::uint2(0x80000000u, 0u))[0], 2.0f);
  EXPECT_EQ(sycl::select(sycl::mint2(1, 2), sycl::mint2(3, 4), sycl::mbool2(false, true))[1], 4);
}

} // namespace
