// Jumps, tables and leapfrog: the machinery that skips, against stepping and against what the definitions
// demand.
#include <algorithm>
#include <array>
#include <cstring>
#include <random>

#include "hvl/mrg32k3a_tables.h"
#include "hvl/streams_detail.h"
#include "hvl/streams_record.h"
#include "support.hpp"

namespace hvl::streams::test {
namespace {

// The untempered sequence of a seeded mt19937, from the first block on.
std::vector<std::uint32_t> mt19937_sequence(std::size_t count) {
  std::vector<std::uint32_t> x(count);
  x[0] = 20211113;
  for (std::uint32_t i = 1; i < 624; ++i)
    x[i] = 1812433253u * (x[i - 1] ^ (x[i - 1] >> 30)) + i;
  for (std::size_t i = 624; i < count; ++i) {
    const std::uint32_t y = (x[i - 624] & 0x80000000u) | (x[i - 623] & 0x7FFFFFFFu);
    x[i] = x[i - 227] ^ (y >> 1) ^ ((y & 1) != 0 ? 0x9908B0DFu : 0u);
  }
  return x;
}

TEST(mt19937_jump, reaches_the_words_that_stepping_reaches) {
  const auto x = mt19937_sequence(400'000);
  for_every_mode([&] {
    for (const std::uint64_t distance :
         {0u, 1u, 2u, 31u, 623u, 624u, 625u, 19936u, 19937u, 19938u, 19939u, 65536u, 399'001u}) {
      std::vector<std::uint32_t> words(x.begin(), x.begin() + 624);
      ASSERT_EQ(vqsMt19937Jump(words.data(), distance), VQS_STATUS_OK);
      const auto there = x.begin() + static_cast<std::ptrdiff_t>(distance);
      expect_equal(words, {there, there + 624});
    }
  });
}

TEST(mt19937_jump, polynomial_serves_a_jump_made_elsewhere) {
  const auto x = mt19937_sequence(100'000);
  for (const std::uint64_t distance : {1u, 5000u, 70'001u}) {
    std::vector<std::uint32_t> polynomial(624, 0xFFFFFFFF);
    ASSERT_EQ(vqsMt19937JumpPolynomial(distance, polynomial.data()), VQS_STATUS_OK);
    std::vector<std::uint32_t> words(624);
    for (std::size_t i = 0; i < 624 * 32; ++i)
      if ((polynomial[i / 32] >> i % 32 & 1) != 0)
        for (std::size_t j = 0; j < 624; ++j)
          words[j] ^= x[1 + i + j];
    const auto there = x.begin() + static_cast<std::ptrdiff_t>(distance);
    expect_equal(words, {there, there + 624});
  }
  std::uint32_t untouched = 7;
  EXPECT_EQ(vqsMt19937JumpPolynomial(0, &untouched), VQS_STATUS_BAD_PARAMETER);
  EXPECT_EQ(vqsMt19937JumpPolynomial(1, nullptr), VQS_STATUS_NULL_POINTER);
  EXPECT_EQ(vqsMt19937Jump(nullptr, 1), VQS_STATUS_NULL_POINTER);
  EXPECT_EQ(untouched, 7u);
}

TEST(mt19937_jump, goes_round_the_period) {
  // 2^19937 - 1 outputs, as 312 words
  std::vector<std::uint64_t> period(312, ~std::uint64_t{0});
  period.back() = (std::uint64_t{1} << 19937 % 64) - 1;
  owned_stream stream(VQS_ENGINE_MT19937);
  const auto expected = owned_stream(stream).bits(2000);
  expect_equal(stream.skip_words(period).bits(2000), expected);
}

TEST(r250_jump, goes_round_the_period) {
  // 2^250 - 1 outputs
  std::vector<std::uint64_t> period(4, ~std::uint64_t{0});
  period.back() >>= 6;
  owned_stream stream(VQS_ENGINE_R250);
  stream.bits(77);
  const auto expected = owned_stream(stream).bits(600);
  expect_equal(stream.skip_words(period).bits(600), expected);
}

TEST(r250_seed_words, are_the_state_and_their_bits_never_dependent) {
  std::vector<std::uint32_t> words = owned_stream(VQS_ENGINE_R250, 3).bits(250);
  const auto following = owned_stream(VQS_ENGINE_R250, 3).skip(250).bits(300);
  expect_equal(owned_stream(VQS_ENGINE_R250, words).bits(300), following);
  words.push_back(7); // has no place
  expect_equal(owned_stream(VQS_ENGINE_R250, words).bits(300), following);
  for (const std::uint32_t same : {0u, 0xFFFFFFFFu, 0x55555555u}) {
    owned_stream stream(VQS_ENGINE_R250, std::vector<std::uint32_t>(250, same));
    owned_stream copy(stream); // refused if they were
    EXPECT_NE(stream.bits(1000), std::vector<std::uint32_t>(1000, 0u));
  }
}

TEST(jump_polynomials, serve_jumps_made_elsewhere) {
  const auto check = [](std::int32_t id, std::size_t degree, std::size_t unit, auto polynomial_of) {
    const auto x = owned_stream(id).bits(unit * (degree + 20'000));
    for (const std::size_t shifts : {1u, 2u, 999u, 19'000u}) {
      std::vector<std::uint32_t> polynomial((degree + 31) / 32, 0xFFFFFFFF);
      ASSERT_EQ(polynomial_of(unit * shifts, polynomial.data()), VQS_STATUS_OK);
      std::vector<std::uint32_t> words(700);
      for (std::size_t i = 0; i < polynomial.size() * 32; ++i)
        if ((polynomial[i / 32] >> i % 32 & 1) != 0)
          for (std::size_t j = 0; j < words.size(); ++j)
            words[j] ^= x[unit * (1 + i) + j];
      const auto there = x.begin() + static_cast<std::ptrdiff_t>(unit * shifts);
      expect_equal(words, {there, there + 700});
    }
    std::uint32_t untouched = 7;
    EXPECT_EQ(polynomial_of(0, &untouched), VQS_STATUS_BAD_PARAMETER);
    EXPECT_EQ(polynomial_of(unit, nullptr), VQS_STATUS_NULL_POINTER);
    EXPECT_EQ(untouched, 7u);
  };
  check(VQS_ENGINE_R250, 250, 1, vqsR250JumpPolynomial);
  for (const std::int32_t member : {0, 6023}) {
    const std::int32_t id = VQS_ENGINE_MT2203 + member;
    const owned_stream stream(id);
    const std::uint32_t matrix =
        static_cast<const vqs_mt2203_record*>(static_cast<vqs_stream>(stream))->matrix;
    check(id, 2240, 1, [matrix](std::uint64_t distance, std::uint32_t* polynomial) {
      return vqsMt2203JumpPolynomial(matrix, distance, polynomial);
    });
  }
  check(VQS_ENGINE_SFMT19937, 19'968, 4, vqsSfmt19937JumpPolynomial);
  std::uint32_t untouched = 7;
  EXPECT_EQ(vqsSfmt19937JumpPolynomial(6, &untouched), VQS_STATUS_BAD_PARAMETER);
}

using matrix = std::array<std::uint32_t, 9>;

matrix product(const matrix& a, const matrix& b, std::uint64_t m) {
  matrix c{};
  for (std::size_t i = 0; i < 9; ++i) {
    std::uint64_t sum = 0;
    for (std::size_t k = 0; k < 3; ++k)
      sum += std::uint64_t{a[i / 3 * 3 + k]} * b[3 * k + i % 3] % m;
    c[i] = static_cast<std::uint32_t>(sum % m);
  }
  return c;
}

TEST(mrg32k3a_tables, hold_the_powers_of_the_recurrences) {
  const auto check = [](const auto& jump, const auto& substream, matrix step, std::uint64_t m) {
    matrix base = step; // step^(8^i)
    for (std::size_t i = 0; i < 21; ++i) {
      matrix power = base;
      for (std::size_t d = 1; d <= 7; ++d, power = product(power, base, m))
        ASSERT_EQ(std::to_array(jump[7 * i + d - 1]), power) << "i " << i << ", d " << d;
      base = power;
    }
    for (int squarings = 63; squarings < 76; ++squarings) // base is step^(2^63) here
      base = product(base, base, m);
    for (std::size_t j = 0; j < 51; ++j, base = product(base, base, m))
      ASSERT_EQ(std::to_array(substream[j]), base) << j;
  };
  check(mrg32k3a_jump_x, mrg32k3a_substream_x, {0, 1, 0, 0, 0, 1, mrg32k3a_m1 - 810728, 1403580, 0},
        mrg32k3a_m1);
  check(mrg32k3a_jump_y, mrg32k3a_substream_y, {0, 1, 0, 0, 0, 1, mrg32k3a_m2 - 1370589, 0, 527612},
        mrg32k3a_m2);
  // as published
  const matrix first = {82758667,   1871391091, 4127413238, 3672831523, 69195019,
                        1871391091, 3672091415, 3528743235, 69195019};
  EXPECT_EQ(std::to_array(mrg32k3a_substream_x[0]), first);
}

TEST(mrg32k3a, equal_components_give_m1_and_seeds_are_repaired) {
  const auto record_of = [](std::vector<std::uint32_t> words) {
    owned_stream stream(VQS_ENGINE_MRG32K3A, words);
    return *static_cast<vqs_mrg32k3a_record*>(static_cast<vqs_stream>(stream));
  };
  auto r = record_of({0, mrg32k3a_m1, 0, 0, 0, mrg32k3a_m2, 9});
  EXPECT_EQ((std::array{r.x0, r.x1, r.x2, r.y0, r.y1, r.y2}), (std::array{1u, 0u, 0u, 1u, 0u, 0u}));
  r = record_of({0xFFFFFFFF, 5});
  EXPECT_EQ((std::array{r.x0, r.x1, r.x2, r.y0, r.y1, r.y2}), (std::array{208u, 5u, 1u, 1u, 1u, 1u}));

  // Both next values are z when 1403580 x1 = z (mod m1), 527612 y2 = z (mod m2) and the other words are 0.
  const auto solve = [](std::uint64_t factor, std::uint64_t z, std::uint64_t m) {
    std::uint64_t inverse = 1; // factor^(m - 2)
    for (std::uint64_t e = m - 2, base = factor; e != 0; e >>= 1, base = base * base % m)
      if ((e & 1) != 0)
        inverse = inverse * base % m;
    return static_cast<std::uint32_t>(inverse * z % m);
  };
  for (const std::uint32_t z : {1u, 77u, 4'000'000'000u}) {
    const std::uint32_t words[] = {0, solve(1403580, z, mrg32k3a_m1), 0, 0, 0, solve(527612, z, mrg32k3a_m2)};
    for_every_mode([&] {
      EXPECT_EQ(owned_stream(VQS_ENGINE_MRG32K3A, words).bits(1)[0], mrg32k3a_m1);
      EXPECT_EQ(owned_stream(VQS_ENGINE_MRG32K3A, words).bits(4000)[0], mrg32k3a_m1);
    });
  }
}

class leapfrog : public ::testing::TestWithParam<std::int32_t> {};

TEST_P(leapfrog, yields_every_stride_th_element) {
  constexpr std::size_t count = 3000;
  for_every_mode([&] {
    for (const std::size_t stride : {1u, 2u, 3u, 7u}) {
      for (const std::size_t index : {std::size_t{0}, stride - 1, stride + 2}) {
        const auto sequence = owned_stream(GetParam(), 99).skip(5).bits(count * stride + index);
        owned_stream leaping(GetParam(), 99);
        leaping.skip(5);
        ASSERT_EQ(vqsLeapfrogStream_64(leaping, index, stride), VQS_STATUS_OK);
        owned_stream skipping(leaping);
        const auto leapt = leaping.bits(count);
        for (std::size_t i = 0; i < count; ++i)
          ASSERT_EQ(leapt[i], sequence[index + i * stride]) << "at " << i << " of stride " << stride;
        EXPECT_EQ(skipping.skip(count).saved(), leaping.saved());
      }
    }
  });
}

TEST_P(leapfrog, of_a_leapfrog_multiplies_the_strides) {
  owned_stream twice(GetParam());
  owned_stream once(GetParam());
  ASSERT_EQ(vqsLeapfrogStream_64(twice, 1, 3), VQS_STATUS_OK);
  ASSERT_EQ(vqsLeapfrogStream_64(twice, 2, std::uint64_t{1} << 40), VQS_STATUS_OK);
  ASSERT_EQ(vqsLeapfrogStream_64(once, 7, std::uint64_t{3} << 40), VQS_STATUS_OK);
  EXPECT_EQ(twice.saved(), once.saved());
}

INSTANTIATE_TEST_SUITE_P(engines, leapfrog,
                         ::testing::Values(VQS_ENGINE_MCG31M1, VQS_ENGINE_MCG59, VQS_ENGINE_WICHMANN_HILL,
                                           VQS_ENGINE_WICHMANN_HILL + 272));

TEST(mcg_seed_words, are_the_state_reduced_and_never_zero) {
  const auto x_of = [](std::int32_t id, std::uint64_t state) -> std::uint64_t {
    const std::uint32_t words[] = {static_cast<std::uint32_t>(state),
                                   static_cast<std::uint32_t>(state >> 32)};
    owned_stream stream(id, words);
    if (id == VQS_ENGINE_MCG59)
      return static_cast<vqs_mcg59_record*>(static_cast<vqs_stream>(stream))->x;
    return static_cast<vqs_mcg31m1_record*>(static_cast<vqs_stream>(stream))->x;
  };
  EXPECT_EQ(x_of(VQS_ENGINE_MCG31M1, 0), 1u);
  EXPECT_EQ(x_of(VQS_ENGINE_MCG31M1, 2147483647), 1u);
  EXPECT_EQ(x_of(VQS_ENGINE_MCG31M1, 2147483648), 1u);
  EXPECT_EQ(x_of(VQS_ENGINE_MCG31M1, 2147483646), 2147483646u);
  EXPECT_EQ(x_of(VQS_ENGINE_MCG59, 0), 1u);
  EXPECT_EQ(x_of(VQS_ENGINE_MCG59, std::uint64_t{1} << 59), 1u);
  EXPECT_EQ(x_of(VQS_ENGINE_MCG59, (std::uint64_t{1} << 59) + 10), 10u);
}

} // namespace
} // namespace hvl::streams::test
