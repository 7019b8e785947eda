#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sycl/device_library.hpp>

namespace {

using sycl::vec;
using sycl::access::address_space;
using sycl::access::decorated;

template <typename T>
class vec_of : public testing::Test {
 public:
  // Values that every element type holds, no two sums, products or shifts of which coincide by chance.
  static T left(int i) { return static_cast<T>(i + 5); }
  static T right(int i) { return static_cast<T>(2 * (i % 5) + 1); }

  template <int N>
  static vec<T, N> filled(T (*value)(int)) {
    vec<T, N> result(T(99));
    for (int i = 0; i < N; ++i)
      result[i] = value(i);
    return result;
  }

  template <typename F>
  static void for_each_length(F f) {
    f(std::integral_constant<int, 1>());
    f(std::integral_constant<int, 2>());
    f(std::integral_constant<int, 3>());
    f(std::integral_constant<int, 4>());
    f(std::integral_constant<int, 8>());
    f(std::integral_constant<int, 16>());
  }
};

using element_types =
    testing::Types<std::int8_t, std::uint8_t, std::int16_t, std::uint16_t, std::int32_t, std::uint32_t,
                   std::int64_t, std::uint64_t, long long, float, double, sycl::half>;
TYPED_TEST_SUITE(vec_of, element_types);

TYPED_TEST(vec_of, has_the_layout_of_an_array) {
  this->for_each_length([](auto n) {
    constexpr std::size_t stored = n == 3 ? 4 : n;
    using type = vec<TypeParam, n>;
    static_assert(sizeof(type) == sizeof(TypeParam) * stored);
    static_assert(alignof(type) == (sizeof(type) < 64 ? sizeof(type) : 64));
    static_assert(std::is_trivially_copyable_v<type> && std::is_trivially_default_constructible_v<type>);
    static_assert(type::size() == n && type::byte_size() == sizeof(type));
    static_assert(std::is_same_v<typename type::element_type, TypeParam>);
    type value(TypeParam(7));
    const auto* first = reinterpret_cast<const TypeParam*>(&value);
    for (int i = 0; i < n; ++i)
      EXPECT_EQ(&value[i], first + i);
  });
}

TYPED_TEST(vec_of, computes_element_by_element) {
  using T = TypeParam;
  using test = vec_of<T>;
  this->for_each_length([](auto n) {
    const auto a = test::template filled<n>(test::left);
    const auto b = test::template filled<n>(test::right);
    const T s = T(3);
    auto compound = a;
    compound += b;
    compound *= s;
    auto stepped = a;
    const auto before = stepped++;
    --(++stepped);
    for (int i = 0; i < n; ++i) {
      const T x = test::left(i);
      const T y = test::right(i);
      EXPECT_EQ((a + b)[i], static_cast<T>(x + y));
      EXPECT_EQ((a - b)[i], static_cast<T>(x - y));
      EXPECT_EQ((a * b)[i], static_cast<T>(x * y));
      EXPECT_EQ((a / b)[i], static_cast<T>(x / y));
      EXPECT_EQ((a - s)[i], static_cast<T>(x - s));
      EXPECT_EQ((s - b)[i], static_cast<T>(s - y));
      EXPECT_EQ(compound[i], static_cast<T>((x + y) * s));
      EXPECT_EQ((-a)[i], static_cast<T>(-x));
      EXPECT_EQ((+a)[i], x);
      EXPECT_EQ(before[i], x);
      EXPECT_EQ(stepped[i], static_cast<T>(x + T(1)));
      if constexpr (std::is_integral_v<T>) {
        EXPECT_EQ((a % b)[i], static_cast<T>(x % y));
        EXPECT_EQ((a & b)[i], static_cast<T>(x & y));
        EXPECT_EQ((a | b)[i], static_cast<T>(x | y));
        EXPECT_EQ((a ^ b)[i], static_cast<T>(x ^ y));
        EXPECT_EQ((a << T(2))[i], static_cast<T>(x << 2));
        EXPECT_EQ((a >> T(1))[i], static_cast<T>(x >> 1));
        EXPECT_EQ((~a)[i], static_cast<T>(~x));
      }
    }
  });
}

TYPED_TEST(vec_of, compares_into_signed_integers_of_the_same_size) {
  using T = TypeParam;
  const vec<T, 4> a{T(1), T(2), T(3), T(0)};
  const vec<T, 4> b{T(2), T(2), T(1), T(0)};
  const auto less = a < b;
  using answer = typename decltype(less)::element_type;
  static_assert(std::is_signed_v<answer> && std::is_integral_v<answer> && sizeof(answer) == sizeof(T));
  const auto expect = [](auto relation, int x, int y, int z, int w) {
    EXPECT_EQ(static_cast<int>(relation[0]), x);
    EXPECT_EQ(static_cast<int>(relation[1]), y);
    EXPECT_EQ(static_cast<int>(relation[2]), z);
    EXPECT_EQ(static_cast<int>(relation[3]), w);
  };
  expect(less, -1, 0, 0, 0);
  expect(a <= b, -1, -1, 0, -1);
  expect(a > b, 0, 0, -1, 0);
  expect(a >= b, 0, -1, -1, -1);
  expect(a == b, 0, -1, 0, -1);
  expect(a != b, -1, 0, -1, 0);
  expect(a && b, -1, -1, -1, 0);
  expect(a || vec<T, 4>(T(0)), -1, -1, -1, 0);
  expect(!a, 0, 0, 0, -1);
  expect(a == T(3), 0, 0, -1, 0);
  expect(T(2) < a, 0, 0, -1, 0);
}

TYPED_TEST(vec_of, loads_and_stores_its_elements_only) {
  using T = TypeParam;
  this->for_each_length([](auto n) {
    T memory[4 * 16 + 1];
    for (int i = 0; i < 4 * 16 + 1; ++i)
      memory[i] = static_cast<T>(i);
    T* const unaligned = memory + 1;
    const auto global = sycl::address_space_cast<address_space::global_space, decorated::no>(unaligned);
    const sycl::generic_ptr<const T, decorated::yes> readable = global;
    vec<T, n> value(T(77));
    value.load(2, readable);
    for (int i = 0; i < n; ++i)
      EXPECT_EQ(value[i], static_cast<T>(1 + 2 * n + i));
    (value + T(1)).store(1, global);
    for (int i = 0; i < 4 * 16 + 1; ++i) {
      const bool inside = i > n && i <= 2 * n;
      EXPECT_EQ(memory[i], static_cast<T>(inside ? i + n + 1 : i)) << i;
    }
  });
}

TEST(vec, is_made_of_scalars_vecs_and_swizzles) {
  constexpr sycl::float2 pair{1.0f, 2.0f};
  constexpr sycl::float4 mixed(pair, 3, 4.0f);
  constexpr sycl::float8 larger(mixed, pair.swizzle<1, 0>(), 7.0f, mixed.w());
  static_assert(mixed[0] == 1 && mixed[1] == 2 && mixed[2] == 3 && mixed[3] == 4);
  static_assert(larger[3] == 4 && larger[4] == 2 && larger[5] == 1 && larger[6] == 7 && larger[7] == 4);
  static_assert(std::is_same_v<decltype(vec{1, 2, 3}), sycl::int3>);
  static_assert(!std::is_convertible_v<float, sycl::float4>, "a scalar fills a vec only when told to");
  static_assert(!std::is_constructible_v<sycl::float4, sycl::float2>);
  static_assert(!std::is_constructible_v<sycl::float4, sycl::float3, sycl::float2>);
  static_assert(!std::is_constructible_v<sycl::float4, sycl::int4>, "conversion is by convert()");
  sycl::int3 value{};
  EXPECT_EQ(value[0] | value[1] | value[2], 0);
  value = 5;
  EXPECT_THAT((std::array{value[0], value[1], value[2]}), testing::Each(5));
  const vec<double, 1> single(2.5);
  const double scalar = single;
  EXPECT_EQ(scalar, 2.5);
}

TEST(vec, multiplies_small_unsigned_integers_without_overflow) {
  const sycl::ushort2 large(std::uint16_t(65535));
  EXPECT_EQ((large * large)[0], 1); // as signed int the product would overflow
}

TEST(vec, holds_bytes_and_booleans) {
  const vec<std::byte, 2> bytes{std::byte{0x5A}, std::byte{0x0F}};
  EXPECT_EQ((bytes & std::byte{0xF0})[0], std::byte{0x50});
  EXPECT_EQ((~bytes)[1], std::byte{0xF0});
  const sycl::bool2 flags{true, false};
  EXPECT_TRUE((flags || true)[1]);
  EXPECT_EQ((!flags)[1], -1);
}

template <sycl::rounding_mode Mode>
std::array<int, 4> to_integers(float a, float b, float c, float d) {
  const sycl::int4 result = sycl::float4{a, b, c, d}.convert<int, Mode>();
  return {result[0], result[1], result[2], result[3]};
}

TEST(vec, converts_under_every_rounding_mode) {
  using sycl::rounding_mode;
  using ints = std::array<int, 4>;
  EXPECT_EQ((to_integers<rounding_mode::automatic>(1.5f, 2.5f, -1.5f, -1.2f)), (ints{1, 2, -1, -1}));
  EXPECT_EQ((to_integers<rounding_mode::rtz>(1.9f, 2.5f, -1.5f, -1.9f)), (ints{1, 2, -1, -1}));
  EXPECT_EQ((to_integers<rounding_mode::rte>(1.5f, 2.5f, -1.5f, -1.2f)), (ints{2, 2, -2, -1}));
  EXPECT_EQ((to_integers<rounding_mode::rtp>(1.1f, 2.0f, -1.5f, -1.2f)), (ints{2, 2, -1, -1}));
  EXPECT_EQ((to_integers<rounding_mode::rtn>(1.9f, 2.0f, -1.5f, -1.2f)), (ints{1, 2, -2, -2}));

  const auto narrowed = [](double value) {
    const vec<double, 1> v(value);
    return std::array{v.convert<float>()[0], v.convert<float, rounding_mode::rtp>()[0],
                      v.convert<float, rounding_mode::rtn>()[0], v.convert<float, rounding_mode::rtz>()[0]};
  };
  const float inf = std::numeric_limits<float>::infinity();
  const float top = std::numeric_limits<float>::max();
  const float tiny = std::numeric_limits<float>::denorm_min();
  const float above = std::nextafter(1.0f, 2.0f);
  EXPECT_THAT(narrowed(1.0 + 1e-12), testing::ElementsAre(1.0f, above, 1.0f, 1.0f));
  EXPECT_THAT(narrowed(-1.0 - 1e-12), testing::ElementsAre(-1.0f, -1.0f, -above, -1.0f));
  EXPECT_THAT(narrowed(0.75), testing::ElementsAre(0.75f, 0.75f, 0.75f, 0.75f));
  EXPECT_THAT(narrowed(1e300), testing::ElementsAre(inf, inf, top, top));
  EXPECT_THAT(narrowed(-1e300), testing::ElementsAre(-inf, -top, -inf, -top));
  EXPECT_THAT(narrowed(1e-300), testing::ElementsAre(0.0f, tiny, 0.0f, 0.0f));
  EXPECT_THAT(narrowed(-1e-300), testing::ElementsAre(0.0f, 0.0f, -tiny, 0.0f));

  const vec<std::uint64_t, 1> large((std::uint64_t(1) << 63) + 1);
  EXPECT_EQ((large.convert<double, rounding_mode::rtn>()[0]), 0x1p63);
  EXPECT_EQ((large.convert<double, rounding_mode::rtp>()[0]), std::nextafter(0x1p63, 1e300));
  EXPECT_EQ((sycl::float2(3.0f).convert<sycl::half, rounding_mode::rtp>()[1]), 3.0f);
  EXPECT_EQ((sycl::int2(-1).convert<std::uint8_t>()[0]), 255);
}

TEST(vec, shows_its_bits_as_another_type) {
  EXPECT_EQ(sycl::float2(1.0f).as<sycl::uint2>()[1], 0x3F800000u);
  EXPECT_EQ(sycl::uint2(0x3F800000u, 0u).as<sycl::float2>()[0], 1.0f);
  const auto halves = sycl::int2(0x00020001, 0x00040003).as<sycl::short4>();
  for (int i = 0; i < 4; ++i)
    EXPECT_EQ(halves[i], i + 1);
}

} // namespace
