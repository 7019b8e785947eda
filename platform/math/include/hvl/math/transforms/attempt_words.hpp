// Words for the further attempts of methods that reject. A group takes a fixed number of engine words whatever is
// rejected: attempt 0 is made of them, attempts 1, 2, ... of a hash of them. So no attempt moves the sequence, and a
// value is the same wherever it is computed. The law is exact as far as the own words' bits reach.
#pragma once

#include "../philox.hpp"

namespace hvl::math {

namespace detail {

// `hash` absorbs the words from First on, four at a time; missing ones are 0. Indices are constants, as a GPU keeps no array
// in registers that is indexed otherwise.
template <std::size_t First, std::size_t N>
HVL_MATH_INLINE constexpr philox_block absorbed(philox_block hash, const std::uint32_t (&own)[N],
                                                std::uint32_t distribution) {
  if constexpr (First < N)
    hash.word[0] ^= own[First];
  if constexpr (First + 1 < N)
    hash.word[1] ^= own[First + 1];
  if constexpr (First + 2 < N)
    hash.word[2] ^= own[First + 2];
  if constexpr (First + 3 < N)
    hash.word[3] ^= own[First + 3];
  if constexpr (First + 4 < N)
    return absorbed<First + 4>(philox4x32x10_round_brute_10(hash, 0, distribution), own, distribution);
  else
    return hash;
}

} // namespace detail

// Four words for attempt 1, 2, ... of the group whose own words are given, 32 bits of each: of an engine with wider words
// the upper 32. `distribution` is a constant that no other rejection method uses.
template <std::size_t N>
HVL_MATH_INLINE constexpr philox_block attempt_words(const std::uint32_t (&own)[N], std::uint32_t attempt,
                                                     std::uint32_t distribution) {
  const philox_block counter = detail::absorbed<0>({}, own, distribution);
  return philox4x32x10_round_brute_10(counter, attempt, distribution);
}

// A word as a uniform on (0, 1), the middle of its cell.
HVL_MATH_INLINE constexpr double attempt_uniform(std::uint32_t word) {
  return (static_cast<double>(word) + 0.5) * 0x1p-32;
}

// Two words as a uniform on [-1, 1].
HVL_MATH_INLINE constexpr double attempt_symmetric(std::uint32_t high, std::uint32_t low) {
  return static_cast<double>(static_cast<std::int64_t>(std::uint64_t{high} << 32 | low)) * 0x1p-63;
}

} // namespace hvl::math
