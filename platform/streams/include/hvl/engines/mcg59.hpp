#pragma once

#include "hvl/engines/mcg.hpp"

namespace hvl::engines {

struct modulus_2_59 {
  using word = std::uint64_t;
  static constexpr word mask = (word{1} << 59) - 1;

  [[gnu::always_inline]] static constexpr word product(word a, word b) { return a * b & mask; }
  static constexpr bool is_value(word w) { return w != 0 && w <= mask; }
  static constexpr bool is_multiplier(word w) { return w % 2 == 1 && w <= mask; }
  static constexpr word residue(std::uint64_t value) { return value & mask; }
  // One of the odd states, whose period is the longest.
  static constexpr word state_from(std::uint64_t random) { return (random & mask) | 1; }
};

struct mcg59 : congruential<modulus_2_59> {
  static constexpr facts about{"mcg59",
                               VQS_ENGINE_MCG59,
                               1,
                               word_kind::unsigned64,
                               word_scale::mcg59,
                               true,
                               skip_form::by_number,
                               true,
                               true};
  using record = vqs_mcg59_record;
  static constexpr word multiplier = 302875106592253; // 13^13

  static constexpr std::uint32_t raw(word w) { return static_cast<std::uint32_t>(w >> 27); }
  static constexpr state state_of(const record& r) { return {r.x, r.a}; }
};

} // namespace hvl::engines
