// The constants of mt19937 and its jumps, for its scalar and its SIMD form.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace hvl::streams {

inline constexpr std::size_t mt19937_words = 624;
inline constexpr std::size_t mt19937_middle = 397;
inline constexpr std::uint32_t mt19937_matrix = 0x9908B0DF;
inline constexpr std::uint32_t mt19937_upper = 0x80000000;

// The word 624 places after `first`, from it, the one behind it and the one 397 places behind it.
[[gnu::always_inline]] static constexpr std::uint32_t mt19937_twist(std::uint32_t first, std::uint32_t second,
                                                                    std::uint32_t middle) {
  const std::uint32_t y = (first & mt19937_upper) | (second & ~mt19937_upper);
  return middle ^ (y >> 1) ^
         (static_cast<std::uint32_t>(-static_cast<std::int32_t>(second & 1)) & mt19937_matrix);
}

// The 624 words that follow, in place.
void mt19937_next_block(std::uint32_t* words) noexcept;

// Replaces 624 consecutive words of the sequence by those `distance` words further, whatever the distance's
// size. May throw std::bad_alloc, and then has changed nothing.
void mt19937_jump(std::uint32_t* words, std::span<const std::uint64_t> distance);

} // namespace hvl::streams
