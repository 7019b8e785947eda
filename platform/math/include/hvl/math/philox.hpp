// Philox4x32 with ten rounds: the block that the engine philox4x32x10 is made of, on the host and in kernels, and the
// hash of transforms/attempt_words.hpp (J. K. Salmon, M. A. Moraes, R. O. Dror, D. E. Shaw, Parallel random numbers: as
// easy as 1, 2, 3, 2011).
#pragma once

#include "ops.hpp"

namespace hvl::math {

inline constexpr int philox_rounds = 10;
inline constexpr std::uint32_t philox_multiplier0 = 0xD2511F53;
inline constexpr std::uint32_t philox_multiplier1 = 0xCD9E8D57;
inline constexpr std::uint32_t philox_bump0 = 0x9E3779B9;
inline constexpr std::uint32_t philox_bump1 = 0xBB67AE85;

struct philox_block {
  std::uint32_t word[4];
};

HVL_MATH_INLINE constexpr philox_block philox4x32x10_round_brute_10(philox_block x, std::uint32_t key0,
                                                                    std::uint32_t key1) {
  for (int round = 0; round < philox_rounds; ++round) {
    const std::uint64_t p0 = std::uint64_t{philox_multiplier0} * x.word[0];
    const std::uint64_t p1 = std::uint64_t{philox_multiplier1} * x.word[2];
    x = {{static_cast<std::uint32_t>(p1 >> 32) ^ x.word[1] ^ key0, static_cast<std::uint32_t>(p1),
          static_cast<std::uint32_t>(p0 >> 32) ^ x.word[3] ^ key1, static_cast<std::uint32_t>(p0)}};
    key0 += philox_bump0;
    key1 += philox_bump1;
  }
  return x;
}

} // namespace hvl::math
