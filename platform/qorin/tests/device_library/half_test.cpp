#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>

#include <gtest/gtest.h>

#include <sycl/device_library.hpp>

namespace {

using sycl::half;

std::uint16_t bits(half value) {
  return sycl::bit_cast<std::uint16_t>(value);
}

/// The value of a half's bits, from the definition of the format.
double decoded(unsigned pattern) {
  const int exponent = static_cast<int>(pattern >> 10 & 31u);
  const auto fraction = static_cast<double>(pattern & 1023u);
  const double size = exponent == 0 ? std::ldexp(fraction, -24) : std::ldexp(1024 + fraction, exponent - 25);
  return (pattern & 0x8000u) != 0 ? -size : size;
}

TEST(half, has_the_values_of_its_format) {
  for (unsigned pattern = 0; pattern < 0x10000u; ++pattern) {
    const half value = half::from_bits(static_cast<std::uint16_t>(pattern));
    if ((pattern & 0x7C00u) == 0x7C00u) {
      EXPECT_EQ(std::isnan(static_cast<float>(value)), (pattern & 0x3FFu) != 0) << pattern;
      continue;
    }
    ASSERT_EQ(static_cast<double>(static_cast<float>(value)), decoded(pattern)) << pattern;
    ASSERT_EQ(bits(half(decoded(pattern))), pattern);
  }
}

TEST(half, rounds_to_nearest_even_once) {
  for (unsigned pattern = 0; pattern < 0x7BFFu; ++pattern) {
    const double low = decoded(pattern);
    const double middle = (low + decoded(pattern + 1)) / 2;
    ASSERT_EQ(bits(half(middle)), pattern + (pattern & 1u)) << pattern;
    // Too near to the middle for a float to tell apart.
    ASSERT_EQ(bits(half(std::nextafter(middle, 1e9))), pattern + 1) << pattern;
    ASSERT_EQ(bits(half(std::nextafter(middle, 0.0))), pattern) << pattern;
  }
  EXPECT_EQ(bits(half(65519.99)), 0x7BFF);
  EXPECT_EQ(bits(half(65520.0f)), 0x7C00);
}

TEST(half, computes_with_one_rounding) {
  std::uint32_t state = 1;
  for (int i = 0; i < 200000; ++i) {
    state = state * 1664525u + 1013904223u;
    const half a = half::from_bits(static_cast<std::uint16_t>(state >> 16));
    const half b = half::from_bits(static_cast<std::uint16_t>((state >> 3) & 0xFFFFu));
    if (!sycl::isfinite(a) || !sycl::isfinite(b))
      continue;
    const double x = static_cast<float>(a);
    const double y = static_cast<float>(b);
    ASSERT_EQ(bits(a + b), bits(half(x + y)));
    ASSERT_EQ(bits(a * b), bits(half(x * y)));
    if (y != 0) {
      ASSERT_EQ(bits(a / b), bits(half(static_cast<double>(static_cast<long double>(x) / y))));
    }
    ASSERT_EQ(a < b, x < y);
    const half c = half::from_bits(static_cast<std::uint16_t>(state & 0x7BFFu));
    ASSERT_EQ(bits(sycl::fma(a, b, c)),
              bits(half(static_cast<double>(static_cast<long double>(x) * y + static_cast<float>(c)))));
  }
}

TEST(half, meets_other_types_as_a_number) {
  const half h = 1.5f;
  static_assert(std::is_same_v<decltype(h + h), half> && std::is_same_v<decltype(h + 1), half>);
  static_assert(std::is_same_v<decltype(h * 2.0f), float> && std::is_same_v<decltype(2.0 * h), double>);
  EXPECT_EQ(h + 1, half(2.5f));
  EXPECT_EQ(2.0 * h, 3.0);
  EXPECT_TRUE(h < 2 && h == 1.5 && 1.0f <= h && h != half(1));
  half accumulated = 1;
  accumulated += 0.5f;
  accumulated *= accumulated;
  EXPECT_EQ(++accumulated, 3.25f);
  EXPECT_EQ(accumulated--, 3.25f);
  EXPECT_EQ(bits(-half(0)), 0x8000);
  EXPECT_EQ(std::numeric_limits<half>::max(), 65504.0f);
  EXPECT_EQ(std::numeric_limits<half>::epsilon(), std::ldexp(1.0f, -10));
  EXPECT_EQ(std::hash<half>{}(half(0)), std::hash<half>{}(-half(0)));
}

} // namespace
