// M. Saito, M. Matsumoto, "SIMD-oriented Fast Mersenne Twister: a 128-bit pseudorandom number generator", Monte Carlo
// and Quasi-Monte Carlo Methods 2006: with units of 128 bits, four words each, the least first,
//
//   w(n) = a ^ (a << 8) ^ ((b >>32 11) & mask) ^ (c >> 8) ^ (d <<32 18)
//
// of a = w(n - 156), b = w(n - 34), c = w(n - 2), d = w(n - 1), where >>32 and <<32 shift each word by itself.
#pragma once

#include "hvl/engines/facts.hpp"

namespace hvl::engines {

struct sfmt19937 {
  static constexpr facts about{"sfmt19937",
                               VQS_ENGINE_SFMT19937,
                               1,
                               word_kind::signed32,
                               word_scale::signed32,
                               true,
                               skip_form::by_number,
                               false,
                               true};
  using record = vqs_sfmt19937_record;
  using word = std::uint32_t;
  static constexpr std::uint32_t raw(word w) { return w; }

  struct recurrence {
    static constexpr int units = 156;
    static constexpr int unit = 4;
    static constexpr int b_units = 122;              // from a to b
    static constexpr int size = unit * units + unit; // a word takes bits of the one before a's
    static constexpr int step = unit;
    static constexpr int degree = 128 * units;

    static constexpr std::uint32_t mask[unit] = {0xDFFFFFEF, 0xDDFECB7F, 0xBFFAFFFF, 0xBFFFFFF6};

    // x[size], whose place in its unit is `place`.
    constexpr std::uint32_t next(const std::uint32_t* x, int place) const {
      const std::uint32_t* const a = x + unit;
      const std::uint32_t* const b = a + b_units * unit;
      const std::uint32_t* const c = a + (units - 2) * unit;
      const std::uint32_t* const d = a + (units - 1) * unit;
      const std::uint32_t below_a = place == 0 ? 0 : a[-1] >> 24;
      const std::uint32_t above_c = place == unit - 1 ? 0 : c[1] << 24;
      return a[0] ^ (a[0] << 8 | below_a) ^ (b[0] >> 11 & mask[place]) ^ (c[0] >> 8 | above_c) ^ d[0] << 18;
    }
    constexpr std::uint32_t output(std::uint32_t y) const { return y; }
  };

  static constexpr recurrence recurrence_of(const record&) { return {}; }
};

} // namespace hvl::engines
