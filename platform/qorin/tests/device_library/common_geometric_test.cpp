#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include <sycl/device_library.hpp>

namespace {

template <typename T>
class common_of : public testing::Test {};
using floating_types = testing::Types<float, double, sycl::half>;
TYPED_TEST_SUITE(common_of, floating_types);

TYPED_TEST(common_of, shapes_numbers) {
  using T = TypeParam;
  using vec = sycl::vec<T, 3>;
  const auto near = [](T got, double want) {
    const double tolerance = 4 * static_cast<double>(std::numeric_limits<T>::epsilon());
    EXPECT_NEAR(static_cast<double>(got), want, std::fabs(want) * tolerance);
  };
  EXPECT_EQ(sycl::max(T(1), T(2)), T(2));
  EXPECT_EQ(sycl::min(T(1), T(2)), T(1));
  EXPECT_EQ(sycl::clamp(T(5), T(0), T(3)), T(3));
  EXPECT_EQ(sycl::clamp(T(-5), T(0), T(3)), T(0));
  near(sycl::degrees(T(1)), 57.29577951308232);
  near(sycl::radians(T(90)), 1.5707963267948966);
  EXPECT_EQ(sycl::mix(T(1), T(3), T(0.25)), T(1.5));
  EXPECT_EQ(sycl::step(T(1), T(1)), T(1));
  EXPECT_EQ(sycl::step(T(1), T(0.5)), T(0));
  EXPECT_EQ(sycl::smoothstep(T(1), T(3), T(1.5)), T(0.15625));
  EXPECT_EQ(sycl::smoothstep(T(1), T(3), T(7)), T(1));
  EXPECT_EQ(sycl::sign(T(-7)), T(-1));
  EXPECT_EQ(sycl::sign(T(7)), T(1));
  EXPECT_TRUE(sycl::signbit(sycl::sign(-T(0))));
  EXPECT_EQ(sycl::sign(std::numeric_limits<T>::quiet_NaN()), T(0));

  const vec v{T(-1), T(0.5), T(4)};
  EXPECT_EQ(sycl::max(v, T(1))[0], T(1));
  EXPECT_EQ(sycl::min(v, vec(T(2)))[2], T(2));
  EXPECT_EQ(sycl::clamp(v, T(0), T(1))[2], T(1));
  EXPECT_EQ(sycl::mix(v, vec(T(0)), T(0.5))[2], T(2));
  EXPECT_EQ(sycl::mix(v, vec(T(0)), vec(T(0), T(1), T(0.25)))[2], T(3));
  EXPECT_EQ(sycl::step(T(0), v)[0], T(0));
  EXPECT_EQ(sycl::smoothstep(T(0), T(1), v)[1], T(0.5));
  EXPECT_EQ(sycl::sign(v)[0], T(-1));
}

TYPED_TEST(common_of, measures_vectors) {
  using T = TypeParam;
  using vec2 = sycl::vec<T, 2>;
  using vec3 = sycl::vec<T, 3>;
  using vec4 = sycl::vec<T, 4>;
  EXPECT_EQ(sycl::dot(vec3(T(1), T(2), T(3)), vec3(T(4), T(5), T(6))), T(32));
  EXPECT_EQ(sycl::dot(T(3), T(4)), T(12));
  const vec3 product = sycl::cross(vec3(T(1), T(2), T(3)), vec3(T(4), T(5), T(6)));
  EXPECT_EQ(product[0], T(-3));
  EXPECT_EQ(product[1], T(6));
  EXPECT_EQ(product[2], T(-3));
  EXPECT_EQ(sycl::cross(vec4(T(1), T(0), T(0), T(9)), vec4(T(0), T(1), T(0), T(9)))[3], T(0));
  EXPECT_EQ(sycl::length(vec2(T(3), T(4))), T(5));
  EXPECT_EQ(sycl::distance(vec2(T(4), T(6)), vec2(T(1), T(2))), T(5));
  EXPECT_EQ(sycl::length(T(-3)), T(3));
  EXPECT_EQ(sycl::normalize(vec2(T(0), T(-2)))[1], T(-1));
  EXPECT_EQ(sycl::normalize(vec2(T(0)))[0], T(0));
  EXPECT_EQ(sycl::length(sycl::marray<T, 2>(T(3), T(4))), T(5));
  EXPECT_EQ(sycl::length(vec4(T(3), T(7), T(7), T(4)).template swizzle<0, 3>()), T(5));

  // Lengths whose squares are out of range.
  const T large = std::numeric_limits<T>::max() / T(4);
  EXPECT_EQ(sycl::length(vec2(large, T(0))), large);
  const T tiny = std::numeric_limits<T>::denorm_min();
  EXPECT_EQ(sycl::length(vec2(T(3) * tiny, T(4) * tiny)), T(5) * tiny);
  EXPECT_EQ(sycl::normalize(vec2(tiny, T(0)))[0], T(1));
  EXPECT_EQ(sycl::length(vec2(std::numeric_limits<T>::infinity(), T(1))), std::numeric_limits<T>::infinity());
}

TEST(geometric, has_fast_forms) {
  EXPECT_FLOAT_EQ(sycl::fast_length(sycl::float2(3, 4)), 5.0f);
  EXPECT_FLOAT_EQ(sycl::fast_distance(sycl::float2(4, 6), sycl::float2(1, 2)), 5.0f);
  EXPECT_FLOAT_EQ(sycl::fast_normalize(sycl::float2(3, 4))[1], 0.8f);
  EXPECT_FLOAT_EQ(sycl::fast_length(-2.0f), 2.0f);
}

} // namespace
