#include <cstddef>
#include <type_traits>

#include <gtest/gtest.h>

#include <sycl/device_library.hpp>

namespace {

using sycl::int2;
using sycl::int3;
using sycl::int4;

template <int N>
void expect_elements(const sycl::vec<int, N>& got, const sycl::vec<int, N>& want) {
  for (int i = 0; i < N; ++i)
    EXPECT_EQ(got[i], want[i]) << "element " << i;
}

TEST(vec_swizzle, names_every_element) {
  const int4 four{10, 11, 12, 13};
  EXPECT_EQ(four.x(), 10);
  EXPECT_EQ(four.y(), 11);
  EXPECT_EQ(four.z(), 12);
  EXPECT_EQ(four.w(), 13);
  EXPECT_EQ(four.r() + four.g() * 100, 1110);
  EXPECT_EQ(four.b() - four.a(), -1);
  sycl::int16 many(0);
  for (int i = 0; i < 16; ++i)
    many[i] = i;
  const int names[16] = {many.s0(), many.s1(), many.s2(), many.s3(), many.s4(), many.s5(),
                         many.s6(), many.s7(), many.s8(), many.s9(), many.sA(), many.sB(),
                         many.sC(), many.sD(), many.sE(), many.sF()};
  for (int i = 0; i < 16; ++i)
    EXPECT_EQ(names[i], i);
}

TEST(vec_swizzle, halves_and_interleaves) {
  const int4 v{0, 1, 2, 3};
  expect_elements<2>(v.lo(), {0, 1});
  expect_elements<2>(v.hi(), {2, 3});
  expect_elements<2>(v.even(), {0, 2});
  expect_elements<2>(v.odd(), {1, 3});
  const sycl::int8 w{0, 1, 2, 3, 4, 5, 6, 7};
  expect_elements<4>(w.hi(), {4, 5, 6, 7});
  expect_elements<2>(w.odd().hi(), {5, 7});
  const int3 three{7, 8, 9};
  expect_elements<2>(three.lo(), {7, 8});
  EXPECT_EQ(three.hi()[0], 9);
  const int2 two{4, 5};
  EXPECT_EQ(two.hi() * 10 + two.lo(), 54);
}

TEST(vec_swizzle, picks_by_index_and_by_word) {
  const int4 v{0, 1, 2, 3};
  expect_elements<4>(v.swizzle<3, 2, 1, 0>(), {3, 2, 1, 0});
  expect_elements<2>(v.swizzle<sycl::elem::w, sycl::elem::s1>(), {3, 1});
  expect_elements<4>(v.wzyx(), {3, 2, 1, 0});
  expect_elements<3>(v.xxz(), {0, 0, 2});
  expect_elements<4>(v.bgra(), {2, 1, 0, 3});
  expect_elements<2>(v.wzyx().yz(), {2, 1});
  expect_elements<2>(v.wzyx().swizzle<3, 0>(), {0, 3});
}

TEST(vec_swizzle, writes_through_to_its_vec) {
  int4 v{0, 1, 2, 3};
  v.xy() = v.yx(); // reads both before it writes
  expect_elements<4>(v, {1, 0, 2, 3});
  v.zw() = 7;
  expect_elements<4>(v, {1, 0, 7, 7});
  v.hi() = int2{8, 9};
  v.lo() += int2{10, 20};
  expect_elements<4>(v, {11, 20, 8, 9});
  v.wzyx() = int4{1, 2, 3, 4};
  expect_elements<4>(v, {4, 3, 2, 1});
  v.x() = v.w();
  v.y() <<= 2;
  v.z() -= 5;
  ++v.w();
  expect_elements<4>(v, {1, 12, -3, 2});
  v.wzyx().xy() = int2{100, 200};
  expect_elements<4>(v, {1, 12, 200, 100});
  v.odd() *= 2;
  const int2 before = v.even()++;
  expect_elements<2>(before, {1, 200});
  expect_elements<4>(v, {2, 24, 201, 200});
  v.xy()[1] = 5;
  EXPECT_EQ(v[1], 5);
  int4 other{31, 32, 33, 34};
  v.zy() = other.zy(); // the same view of another vec copies elements, not the view
  v.w() = other.w();
  expect_elements<4>(v, {2, 32, 33, 34});
  const auto view = v.xy();
  view = other.xy();
  expect_elements<4>(v, {31, 32, 33, 34});
}

TEST(vec_swizzle, is_a_value_in_expressions) {
  const int4 v{1, 2, 3, 4};
  expect_elements<2>(v.xy() + v.zw(), {4, 6});
  expect_elements<2>(v.xy() * 3 - int2{1, 1}, {2, 5});
  expect_elements<2>(2 - v.hi(), {-1, -2});
  expect_elements<2>(v.lo() < v.odd(), {-1, -1});
  expect_elements<2>(-v.zw(), {-3, -4});
  EXPECT_EQ(v.x() + v.y() * v.z(), 7);
  EXPECT_TRUE(v.x() < v.y());
  expect_elements<4>(v * v.y(), {2, 4, 6, 8});
  EXPECT_EQ(v.xy().convert<float>()[1], 2.0f);
  EXPECT_EQ(v.xy().as<sycl::uint2>()[0], 1u);
  static_assert(decltype(v.xyz())::size() == 3);

  int memory[6] = {-1, -1, -1, -1, -1, -1};
  const sycl::raw_private_ptr<int> pointer(memory);
  v.zw().store(1, pointer);
  EXPECT_EQ(memory[1], -1);
  EXPECT_EQ(memory[2] * 10 + memory[3], 34);
  int4 target{0, 0, 0, 0};
  target.wx().load(1, pointer);
  expect_elements<4>(target, {4, 0, 0, 3});
}

} // namespace
