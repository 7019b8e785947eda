// Streams whose next words are extreme ones: the ends of the uniform's interval, its middle, and what lies beside them.
#pragma once

#include <algorithm>
#include <iterator>
#include <random>

#include "support.hpp"

namespace hvl::streams::test {

// Undoes the tempering of mt19937.
inline std::uint32_t untempered(std::uint32_t y) {
  y ^= y >> 18;
  y ^= (y << 15) & 0xEFC60000;
  std::uint32_t x = y;
  for (int k = 0; k < 4; ++k) // seven more bits are right each time
    x = y ^ ((x << 7) & 0x9D2C5680);
  y = x;
  for (int k = 0; k < 2; ++k)
    x = y ^ x >> 11;
  return x;
}

// So many words of mt19937 are chosen freely.
inline constexpr std::size_t extreme_words = 623;

// Of all ways to scale a word but mrg32k3a's: mt19937 with extreme words in random order, then the multiplicative engines,
// which stay at an end or change between both.
inline std::vector<owned_stream> streams_of_extreme_words() {
  std::vector<owned_stream> all;
  constexpr std::uint32_t choices[] = {0x80000000, 0x80000001, 0x8000003F, 0xC0000000, 0xFFFFFFFF,
                                       0,          1,          0x40000000, 0x7FFFFF00, 0x7FFFFFFF};
  for (std::uint32_t seed = 1; seed <= 8; ++seed) {
    owned_stream& stream = all.emplace_back(VQS_ENGINE_MT19937);
    auto& record = *static_cast<vqs_mt19937_record*>(static_cast<vqs_stream>(stream));
    std::mt19937 chosen(seed);
    std::vector<std::uint32_t> words(extreme_words);
    for (std::uint32_t& word : words)
      word = choices[chosen() % std::size(choices)];
    record.words[0] = 0x80000000; // used
    std::transform(words.begin(), words.end(), record.words + 1, untempered);
    record.position = 1;
    EXPECT_EQ(owned_stream(stream).bits(extreme_words), words);
  }
  for (const std::uint32_t x : {1u, 0x7FFFFFFEu})
    for (const std::uint32_t a : {1u, 0x7FFFFFFEu}) {
      auto& record =
          *static_cast<vqs_mcg31m1_record*>(static_cast<vqs_stream>(all.emplace_back(VQS_ENGINE_MCG31M1)));
      record.x = x;
      record.a = a;
    }
  constexpr std::uint64_t greatest = (std::uint64_t{1} << 59) - 1;
  for (const std::uint64_t x : {std::uint64_t{1}, greatest})
    for (const std::uint64_t a : {std::uint64_t{1}, greatest}) {
      auto& record =
          *static_cast<vqs_mcg59_record*>(static_cast<vqs_stream>(all.emplace_back(VQS_ENGINE_MCG59)));
      record.x = x;
      record.a = a;
    }
  return all;
}

} // namespace hvl::streams::test
