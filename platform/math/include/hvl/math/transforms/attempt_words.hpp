// Words for the further attempts of methods that reject. A group takes a fixed number of engine words whatever is
// rejected: attempt 0 is made of them, attempts 1, 2, ... of a hash of them. So no attempt moves the sequence, and a
// value is the same wherever it is computed. The law is exact as far as the own words' bits reach.
#pragma once

#include "../philox.hpp"

namespace hvl::math {

namespace detail {

// `hash` absorbs the words from `first` on, four at a time; missing ones are 0.
template <std::size_t N>
HVL_MATH_INLINE constexpr philox_block absorbed(philox_block hash, const std::uint32_t (&own)[N],
                                                std::size_t first) {
  for (std::size_t i = 0; i < 4 && first + i < N; ++i)
    hash.word[i] ^= own[first + i];
  return hash;
}

} // namespace detail

// Four words for attempt 1, 2, ... of the group whose own words are given, 32 bits of each: of an engine with wider words
// the upper 32. `distribution` is a constant that no other rejection method uses.
template <std::size_t N>
HVL_MATH_INLINE constexpr philox_block attempt_words(const std::uint32_t (&own)[N], std::uint32_t attempt,
                                                     std::uint32_t distribution) {
  philox_block counter = detail::absorbed({}, own, 0);
  for (std::size_t first = 4; first < N; first += 4)
    counter = detail::absorbed(philox4x32x10_round_brute_10(counter, 0, distribution), own, first);
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
