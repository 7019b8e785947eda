// M. Matsumoto, T. Nishimura, "Mersenne Twister: a 623-dimensionally equidistributed uniform pseudo-random number
// generator", ACM TOMACS 8 (1998).
#pragma once

#include "hvl/engines/facts.hpp"

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

  struct recurrence {
    static constexpr int size = 624;
    static constexpr int middle = 397;
    static constexpr int step = 224;
    static constexpr int degree = 19937;
    static constexpr int unit = 1;
    static_assert(step % 4 == 0 && step < size - middle);

    static constexpr std::uint32_t matrix = 0x9908B0DF;
    static constexpr std::uint32_t upper = 0x80000000; // of the oldest word only this bit takes part
    static constexpr std::uint32_t tempering_b = 0x9D2C5680;
    static constexpr std::uint32_t tempering_c = 0xEFC60000;

    // The word `size` places after `oldest`, from it, the one behind it and the one `middle` places behind it.
    constexpr std::uint32_t twist(std::uint32_t oldest, std::uint32_t second,
                                  std::uint32_t middle_word) const {
      const std::uint32_t joined = (oldest & upper) | (second & ~upper);
      return middle_word ^ joined >> 1 ^ ((0 - (second & 1)) & matrix);
    }

    // What a twist with `middle_word` joined to make a word: the oldest word's top bit, the second's other bits. (The
    // matrix's top bit tells whether it took part.)
    constexpr std::uint32_t joined(std::uint32_t made, std::uint32_t middle_word) const {
      const std::uint32_t mixed = made ^ middle_word;
      const std::uint32_t odd = mixed >> 31;
      return (mixed ^ ((0 - odd) & matrix)) << 1 | odd;
    }

    constexpr std::uint32_t next(const std::uint32_t* x) const { return twist(x[0], x[1], x[middle]); }

    constexpr std::uint32_t output(std::uint32_t y) const {
      y ^= y >> 11;
      y ^= (y << 7) & tempering_b;
      y ^= (y << 15) & tempering_c;
      return y ^ y >> 18;
    }
  };

  static constexpr recurrence recurrence_of(const record&) { return {}; }
};

} // namespace hvl::engines
