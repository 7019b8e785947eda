#include <cstdint>
#include <limits>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include <sycl/device_library.hpp>

namespace {

__extension__ typedef __int128 wide;

template <typename T>
class integer_of : public testing::Test {
 public:
  static constexpr int width = 8 * sizeof(T);

  /// All pairs of 8-bit values, edges and a pseudo-random sample of the wider types.
  static std::vector<T> values() {
    std::vector<T> result;
    if constexpr (sizeof(T) == 1) {
      for (int i = 0; i < 256; ++i)
        result.push_back(static_cast<T>(i));
    } else {
      for (int shift = 0; shift < width; ++shift)
        for (int offset = -1; offset <= 1; ++offset)
          result.push_back(static_cast<T>((std::uint64_t(1) << shift) + static_cast<std::uint64_t>(offset)));
      std::uint64_t state = 7;
      for (int i = 0; i < 40; ++i)
        result.push_back(static_cast<T>((state = state * 6364136223846793005u + 1442695040888963407u) >> 3));
    }
    return result;
  }
  static T saturated(wide value) {
    const wide low = std::numeric_limits<T>::min();
    const wide high = std::numeric_limits<T>::max();
    return static_cast<T>(value < low ? low : value > high ? high : value);
  }
};
using integer_types = testing::Types<std::int8_t, std::uint8_t, std::int16_t, std::uint16_t, std::int32_t,
                                     std::uint32_t, std::int64_t, std::uint64_t>;
TYPED_TEST_SUITE(integer_of, integer_types);

TYPED_TEST(integer_of, agrees_with_arithmetic_in_128_bits) {
  using T = TypeParam;
  const int bits = this->width;
  for (const T a : this->values()) {
    const wide x = a;
    ASSERT_EQ(sycl::abs(a), static_cast<T>(x < 0 ? -x : x));
    for (const T b : this->values()) {
      const wide y = b;
      ASSERT_EQ(sycl::abs_diff(a, b), static_cast<T>(x < y ? y - x : x - y));
      ASSERT_EQ(sycl::add_sat(a, b), this->saturated(x + y));
      ASSERT_EQ(sycl::sub_sat(a, b), this->saturated(x - y));
      ASSERT_EQ(sycl::hadd(a, b), static_cast<T>((x + y) >> 1));
      ASSERT_EQ(sycl::rhadd(a, b), static_cast<T>((x + y + 1) >> 1));
      ASSERT_EQ(sycl::max(a, b), static_cast<T>(x < y ? y : x));
      ASSERT_EQ(sycl::min(a, b), static_cast<T>(x < y ? x : y));
      if constexpr (!std::is_same_v<T, std::uint64_t>) { // whose products need 129 bits in a signed type
        ASSERT_EQ(sycl::mul_hi(a, b), static_cast<T>((x * y) >> bits));
        const T c = static_cast<T>(~a);
        ASSERT_EQ(sycl::mad_sat(a, b, c), this->saturated(x * y + c));
        ASSERT_EQ(sycl::mad_hi(a, b, c), static_cast<T>(((x * y) >> bits) + c));
      }
    }
  }
  EXPECT_EQ(sycl::clamp(T(5), T(6), T(9)), T(6));
  EXPECT_EQ(sycl::clamp(T(10), T(6), T(9)), T(9));
  EXPECT_EQ(sycl::clamp(T(7), T(6), T(9)), T(7));
}

TYPED_TEST(integer_of, counts_and_moves_bits) {
  using T = TypeParam;
  const int bits = this->width;
  for (const T a : this->values()) {
    int ones = 0;
    int highest = -1;
    int lowest = bits;
    for (int i = 0; i < bits; ++i)
      if ((static_cast<std::uint64_t>(a) >> i & 1u) != 0) {
        ++ones;
        highest = i;
        lowest = std::min(lowest, i);
      }
    ASSERT_EQ(sycl::popcount(a), static_cast<T>(ones));
    ASSERT_EQ(sycl::clz(a), static_cast<T>(bits - 1 - highest));
    ASSERT_EQ(sycl::ctz(a), static_cast<T>(lowest));
    for (int count = 0; count <= bits + 3; ++count) {
      const T turned = sycl::rotate(a, static_cast<T>(count));
      for (int i = 0; i < bits; ++i)
        ASSERT_EQ(static_cast<std::uint64_t>(turned) >> ((i + count) % bits) & 1u,
                  static_cast<std::uint64_t>(a) >> i & 1u);
    }
  }
  EXPECT_EQ(sycl::rotate(T(1), T(-1)), static_cast<T>(std::uint64_t(1) << (bits - 1)));
}

TEST(integer, multiplies_64_bits_in_full) {
  const std::uint64_t large = ~std::uint64_t(0);
  EXPECT_EQ(sycl::mul_hi(large, large), large - 1);
  EXPECT_EQ(sycl::mad_hi(large, large, std::uint64_t(5)), 3u); // wraps
  EXPECT_EQ(sycl::mad_sat(large, large, large), large);
  EXPECT_EQ(sycl::mad_sat(std::uint64_t(3), std::uint64_t(4), std::uint64_t(5)), 17u);
}

TEST(integer, joins_halves_and_multiplies_24_bits) {
  EXPECT_EQ(sycl::upsample(std::int8_t(-2), std::uint8_t(0x34)), std::int16_t(-0x1CC));
  EXPECT_EQ(sycl::upsample(0x12345678u, 0x9ABCDEF0u), 0x123456789ABCDEF0u);
  EXPECT_EQ(sycl::upsample(sycl::short2(-1), sycl::ushort2(std::uint16_t(2)))[1], -65534);
  EXPECT_EQ(sycl::mul24(0xFFFFFF, 3), 0x2FFFFFD);
  EXPECT_EQ(sycl::mad24(1000u, 1000u, 7u), 1000007u);
}

TEST(integer, works_on_vecs_swizzles_and_marrays) {
  const sycl::int4 v{-3, 5, 16, 0};
  EXPECT_EQ(sycl::abs(v)[0], 3);
  EXPECT_EQ(sycl::clz(v)[2], 27);
  EXPECT_EQ(sycl::max(v, 4)[0], 4);
  EXPECT_EQ(sycl::min(v, sycl::int4(2))[1], 2);
  EXPECT_EQ(sycl::clamp(v, 0, 6)[2], 6);
  EXPECT_EQ(sycl::clamp(v, sycl::int4(0), sycl::int4(1, 2, 3, 4))[2], 3);
  EXPECT_EQ(sycl::popcount(v.swizzle<1, 0>())[0], 2);
  EXPECT_EQ(sycl::max(v.lo(), v.hi())[0], 16);
  static_assert(std::is_same_v<decltype(sycl::max(v.x(), v.y())), int>);
  EXPECT_EQ(sycl::max(v.x(), v.y()), 5);
  EXPECT_EQ(sycl::clamp(v.z(), 0, 7) + sycl::popcount(v.y()), 9);
  EXPECT_EQ(sycl::mul_hi(sycl::muint2(1u << 31), sycl::muint2(6u))[1], 3u);
  EXPECT_EQ(sycl::mad_sat(sycl::char2(100), sycl::char2(2), sycl::char2(1))[1], 127);
  EXPECT_EQ(sycl::rotate(sycl::uchar2(0x81), sycl::uchar2(1))[0], 3);
}

} // namespace
