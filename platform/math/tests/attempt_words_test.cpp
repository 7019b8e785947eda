#include <gtest/gtest.h>

#include <cstddef>

#include "hvl/math/transforms/attempt_words.hpp"

namespace hvl::math {
namespace {

constexpr bool equal(const philox_block& a, const philox_block& b) {
  for (std::size_t i = 0; i < 4; ++i)
    if (a.word[i] != b.word[i])
      return false;
  return true;
}

// The known answers that the authors publish with Random123.
static_assert(equal(philox4x32x10_round_brute_10({}, 0, 0),
                    {{0x6627e8d5, 0xe169c58d, 0xbc57ac4c, 0x9b00dbd8}}));
static_assert(equal(philox4x32x10_round_brute_10({{~0u, ~0u, ~0u, ~0u}}, ~0u, ~0u),
                    {{0x408f276d, 0x41c83b0e, 0xa20bc7c6, 0x6d5451fd}}));
static_assert(equal(philox4x32x10_round_brute_10({{0x243f6a88, 0x85a308d3, 0x13198a2e, 0x03707344}},
                                                 0xa4093822, 0x299f31d0),
                    {{0xd16cfe09, 0x94fdcceb, 0x5001e420, 0x24126ea1}}));

TEST(attempt_words, are_a_hash_of_all_own_words_of_the_attempt_and_of_the_distribution) {
  constexpr std::uint32_t two[] = {7, 8};
  constexpr std::uint32_t padded[] = {7, 8, 0, 0};
  EXPECT_TRUE(equal(attempt_words(two, 3, 5), philox4x32x10_round_brute_10({{7, 8, 0, 0}}, 3, 5)));
  EXPECT_TRUE(equal(attempt_words(two, 3, 5), attempt_words(padded, 3, 5)));

  constexpr std::uint32_t six[] = {1, 2, 3, 4, 5, 6};
  philox_block absorbed = philox4x32x10_round_brute_10({{1, 2, 3, 4}}, 0, 9);
  absorbed.word[0] ^= 5;
  absorbed.word[1] ^= 6;
  EXPECT_TRUE(equal(attempt_words(six, 2, 9), philox4x32x10_round_brute_10(absorbed, 2, 9)));

  std::uint32_t nine[] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
  const philox_block before = attempt_words(nine, 1, 1);
  for (std::uint32_t& word : nine) {
    word ^= 0x10000;
    EXPECT_FALSE(equal(attempt_words(nine, 1, 1), before));
    word ^= 0x10000;
  }
}

TEST(attempt_words, uniforms_are_centred_and_end_inside_the_interval) {
  EXPECT_EQ(attempt_uniform(0), 0x1p-33);
  EXPECT_EQ(attempt_uniform(~0u), 1 - 0x1p-33);
  EXPECT_EQ(attempt_symmetric(0x80000000, 0), -1.0);
  EXPECT_EQ(attempt_symmetric(0, 1), 0x1p-63);
  EXPECT_EQ(attempt_symmetric(0x40000000, 0), 0.5);
  EXPECT_LE(attempt_symmetric(0x7FFFFFFF, ~0u), 1.0);
}

} // namespace
} // namespace hvl::math
