// The multiplicative congruential engines: x(k + 1) = a x(k) modulo m. The multiplier travels with the state, so a
// leapfrogged stream is none the different.
#pragma once

#include "hvl/engines/facts.hpp"
#include "hvl/engines/power.hpp"

namespace hvl::engines {

// Modulus has word, and product(a, b) of two residues.
template <class Modulus>
struct congruential : Modulus {
  using Modulus::product;
  using typename Modulus::word;

  // A jump costs as much as some tens of steps.
  static constexpr int blocks_per_item = 16;

  // x is the next word.
  struct state {
    word x, a;
  };

  // The exponent is a number, or a span of words.
  template <class Exponent>
  static constexpr word power_of(word base, Exponent exponent) {
    return power(base, exponent, word{1}, [](word a, word b) { return product(a, b); });
  }

  struct leap {
    std::uint64_t blocks;
    word a; // the power of the multiplier
  };

  struct cursor {
    word x, a;
    constexpr void pass(const leap& over) { x = product(x, over.a); }
    constexpr void next(word (&words)[4]) {
      fill_block(words, [this] {
        const word w = x;
        x = product(x, a);
        return w;
      });
    }
  };

  static constexpr cursor at(const state& from, std::uint64_t block) {
    return {product(from.x, power_of(from.a, 4 * block)), from.a};
  }
  static constexpr leap leap_of(const state& from, std::uint64_t unit, std::uint64_t units) {
    return {unit * units, power_of(from.a, 4 * unit * units)};
  }
};

} // namespace hvl::engines
