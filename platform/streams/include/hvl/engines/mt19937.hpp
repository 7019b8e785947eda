// The twister of its paper, with a state of 19937 bits.
#pragma once

#include "hvl/engines/facts.hpp"
#include "hvl/engines/twister.hpp"

namespace hvl::engines {

struct mt19937 {
  static constexpr facts about{"mt19937",
                               VQS_ENGINE_MT19937,
                               1,
                               word_kind::signed32,
                               word_scale::signed32,
                               true,
                               skip_form::by_number,
                               false,
                               true};
  using record = vqs_mt19937_record;
  using word = std::uint32_t;
  static constexpr std::uint32_t raw(word w) { return w; }

  struct parameters {
    static constexpr int size = 624;
    static constexpr int middle = 397;
    static constexpr int step = 224;
    static constexpr int degree = 19937;
    static constexpr int unit = 1;
    static_assert(step % 4 == 0 && step < size - middle);

    static constexpr std::uint32_t matrix = 0x9908B0DF;
    static constexpr std::uint32_t upper = 0x80000000;
    static constexpr int first_shift = 11;
    static constexpr std::uint32_t tempering_b = 0x9D2C5680;
    static constexpr std::uint32_t tempering_c = 0xEFC60000;
  };
  using recurrence = twister<parameters>;

  static constexpr recurrence recurrence_of(const record&) { return {}; }
};

} // namespace hvl::engines
