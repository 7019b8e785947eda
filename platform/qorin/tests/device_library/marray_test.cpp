#include <cstdint>
#include <type_traits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sycl/device_library.hpp>

namespace {

using sycl::marray;
using testing::Each;
using testing::ElementsAre;

TEST(marray, is_made_of_scalars_and_marrays) {
  constexpr sycl::mint2 pair{1, 2};
  constexpr marray<int, 5> five(pair, 3, pair);
  static_assert(five[0] == 1 && five[2] == 3 && five[4] == 2 && five.size() == 5);
  static_assert(std::is_same_v<decltype(marray{1.0f, 2.0f}), sycl::mfloat2>);
  static_assert(std::is_trivially_copyable_v<sycl::mfloat3> && sizeof(sycl::mfloat3) == 12);
  static_assert(!std::is_convertible_v<int, sycl::mint2>);
  static_assert(!std::is_constructible_v<sycl::mint4, int, int>);
  EXPECT_THAT((marray<int, 7>(9)), Each(9));
  EXPECT_THAT((marray<double, 3>()), Each(0.0));
  sycl::mint3 assigned;
  assigned = 4;
  EXPECT_THAT(assigned, Each(4));
  const int scalar = marray<int, 1>(6);
  EXPECT_EQ(scalar, 6);
}

TEST(marray, computes_element_by_element) {
  const sycl::mint3 a{7, 8, 9};
  const sycl::mint3 b{2, 3, 4};
  EXPECT_THAT(a + b, ElementsAre(9, 11, 13));
  EXPECT_THAT(a - 1, ElementsAre(6, 7, 8));
  EXPECT_THAT(10 - a, ElementsAre(3, 2, 1));
  EXPECT_THAT(a * b, ElementsAre(14, 24, 36));
  EXPECT_THAT(a / b, ElementsAre(3, 2, 2));
  EXPECT_THAT(a % b, ElementsAre(1, 2, 1));
  EXPECT_THAT((a & b) | (a ^ b), ElementsAre(7, 11, 13));
  EXPECT_THAT((a << 1) >> b, ElementsAre(3, 2, 1));
  EXPECT_THAT(-a, ElementsAre(-7, -8, -9));
  EXPECT_THAT(~a, ElementsAre(-8, -9, -10));
  sycl::mint3 c = a;
  c += b;
  c <<= 1;
  EXPECT_THAT(c--, ElementsAre(18, 22, 26));
  EXPECT_THAT(++c, ElementsAre(18, 22, 26));
  int sum = 0;
  for (int& element : c)
    sum += element;
  EXPECT_EQ(sum, 66);
}

TEST(marray, compares_into_booleans) {
  const marray<float, 3> a{1.0f, 2.0f, 3.0f};
  const marray<float, 3> b{3.0f, 2.0f, 1.0f};
  static_assert(std::is_same_v<decltype(a < b), sycl::mbool3>);
  EXPECT_THAT(a < b, ElementsAre(true, false, false));
  EXPECT_THAT(a >= 2.0f, ElementsAre(false, true, true));
  EXPECT_THAT(a == b, ElementsAre(false, true, false));
  EXPECT_THAT(!(a != b) || (b < a), ElementsAre(false, true, true));
}

struct clock_hours {
  int value = 12;
  friend constexpr clock_hours operator+(clock_hours a, clock_hours b) { return {(a.value + b.value) % 12}; }
  friend constexpr bool operator==(clock_hours a, clock_hours b) { return a.value == b.value; }
};

TEST(marray, holds_what_a_program_computes_with) {
  const marray<clock_hours, 3> late(clock_hours{9}, clock_hours{10}, clock_hours{11});
  EXPECT_THAT(late + clock_hours{3}, ElementsAre(clock_hours{0}, clock_hours{1}, clock_hours{2}));
  EXPECT_THAT((late == marray<clock_hours, 3>(clock_hours{9})), ElementsAre(true, false, false));
  EXPECT_THAT((marray<clock_hours, 2>()), Each(clock_hours{12}));
}

} // namespace
