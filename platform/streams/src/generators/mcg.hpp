// The arithmetic of the two multiplicative congruential engines, for their scalar and their SIMD form.
#pragma once

#include <cstdint>

#include "hvl/streams_record.h"

namespace hvl::streams {

struct mcg31m1_arithmetic {
  using record = vqs_mcg31m1_record;
  using word = std::uint32_t;
  static constexpr word modulus = 2147483647;
  static constexpr word multiplier = 1132489760;

  [[gnu::always_inline]] static constexpr word product(word a, word b) {
    const std::uint64_t p = std::uint64_t{a} * b;
    const std::uint64_t folded = (p >> 31) + (p & modulus); // below 2^32
    return static_cast<word>(folded >= modulus ? folded - modulus : folded);
  }
  static constexpr word residue(std::uint64_t value) { return static_cast<word>(value % modulus); }
  // One of all states.
  static constexpr word state_from(std::uint64_t random) {
    return static_cast<word>(random % (modulus - 1)) + 1;
  }
};

struct mcg59_arithmetic {
  using record = vqs_mcg59_record;
  using word = std::uint64_t;
  static constexpr word mask = (word{1} << 59) - 1;
  static constexpr word multiplier = 302875106592253; // 13^13

  [[gnu::always_inline]] static constexpr word product(word a, word b) { return a * b & mask; }
  static constexpr word residue(std::uint64_t value) { return value & mask; }
  // One of the odd states, whose period is the longest.
  static constexpr word state_from(std::uint64_t random) { return (random & mask) | 1; }
};

} // namespace hvl::streams
