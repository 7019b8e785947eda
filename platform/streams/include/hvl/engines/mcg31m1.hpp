// P. L'Ecuyer, "Tables of linear congruential generators of different sizes and good lattice structure", Mathematics of
// Computation 68 (1999).
#pragma once

#include "hvl/engines/mcg.hpp"

namespace hvl::engines {

struct modulus_2_31_minus_1 {
  using word = std::uint32_t;
  static constexpr word modulus = 2147483647;

  // Folds the upper bits onto the lower ones.
  [[gnu::always_inline]] static constexpr word product(word a, word b) {
    const std::uint64_t p = std::uint64_t{a} * b;
    const std::uint64_t folded = (p >> 31) + (p & modulus); // below 2^32
    return static_cast<word>(folded >= modulus ? folded - modulus : folded);
  }
  static constexpr bool is_value(word w) { return w != 0 && w < modulus; }
  static constexpr bool is_multiplier(word w) { return is_value(w); }
  static constexpr word residue(std::uint64_t value) { return static_cast<word>(value % modulus); }
  // One of all states.
  static constexpr word state_from(std::uint64_t random) {
    return static_cast<word>(random % (modulus - 1)) + 1;
  }
};

struct mcg31m1 : congruential<modulus_2_31_minus_1> {
  static constexpr facts about{"mcg31m1",
                               VQS_ENGINE_MCG31M1,
                               1,
                               word_kind::unsigned32,
                               word_scale::mcg31m1,
                               false,
                               skip_form::by_number,
                               true,
                               true};
  using record = vqs_mcg31m1_record;
  static constexpr word multiplier = 1132489760;

  static constexpr std::uint32_t raw(word w) { return w; }
  static constexpr state state_of(const record& r) { return {r.x, r.a}; }
};

} // namespace hvl::engines
