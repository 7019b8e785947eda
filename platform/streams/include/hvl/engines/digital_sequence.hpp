// Digital sequences in base 2, point by point: coordinate d of point n is the exclusive or of the direction numbers of
// dimension d at the set bits of the Gray code of n (I. A. Antonov, V. M. Saleev, "An economic method of computing
// LP-tau sequences", USSR Computational Mathematics and Mathematical Physics 19 (1979)). After 2^32 points they begin anew.
#pragma once

#include <algorithm>
#include <bit>

#include "hvl/engines/facts.hpp"

namespace hvl::engines {

struct digital_sequence {
  using record = vqs_digital_record;
  using word = std::uint32_t;
  static constexpr std::uint32_t raw(word w) { return w; }

  static constexpr int number_bits = 32;
  static constexpr std::size_t record_stride = 33; // words of a dimension

  // Of all dimensions of a record.
  static const word* direction_numbers(const record& r) { return reinterpret_cast<const word*>(&r + 1); }

  struct state {
    const word* numbers;
    std::size_t stride; // words from one dimension to the next
    std::uint32_t dimensions;
    std::uint32_t point, coordinate; // of the next word

    constexpr word value() const {
      const word* const v = numbers + stride * coordinate;
      word x = 0;
      for (std::uint32_t gray = point ^ point >> 1; gray != 0; gray &= gray - 1)
        x ^= v[std::countr_zero(gray)];
      return x;
    }
    // What value() changes by from this point to the one 2^power later, power > 0: adding 2^power flips a bit of the point and
    // all that the carry reaches, so in the Gray code the bits below and above those.
    constexpr word change(int power) const {
      const word* const v = numbers + stride * coordinate;
      const int above = std::countr_zero(~(point | ((1u << power) - 1)));
      return v[power - 1] ^ v[std::min(above, number_bits - 1)]; // the last point is followed by the first
    }
    constexpr void step() {
      if (++coordinate == dimensions) {
        coordinate = 0;
        ++point;
      }
    }
    constexpr void advance(std::uint64_t words) {
      const std::uint64_t ahead = coordinate + words;
      point += static_cast<std::uint32_t>(ahead / dimensions);
      coordinate = static_cast<std::uint32_t>(ahead % dimensions);
    }
  };

  static state state_of(const record& r) {
    return {direction_numbers(r), record_stride, r.dimensions, r.point, r.coordinate};
  }

  // A jump takes divisions, and as many exclusive ors for a word as its point has changes between bits.
  static constexpr int blocks_per_item = 16;

  struct leap {
    std::uint64_t blocks;
    int power; // over 2^power points; at least 1
  };

  struct cursor {
    state s; // of the first of the next words
    word x[4];

    constexpr void next(word (&words)[4]) {
      std::copy_n(x, 4, words);
      s.advance(4);
      make();
    }
    constexpr void pass(const leap& over) {
      state at = s;
      const word* before = x;
      fill_block(x, [&] {
        const word w = *before++ ^ at.change(over.power);
        at.step();
        return w;
      });
      s.point += 1u << over.power;
    }
    constexpr void make() {
      state at = s;
      fill_block(x, [&at] {
        const word w = at.value();
        at.step();
        return w;
      });
    }
  };

  static constexpr cursor at(const state& from, std::uint64_t block) {
    cursor result{from, {}};
    result.s.advance(4 * block);
    result.make();
    return result;
  }
  static constexpr leap leap_of(const state& from, std::uint64_t unit, std::uint64_t units) {
    for (int power = 1; power < number_bits; ++power) {
      const std::uint64_t words = std::uint64_t{from.dimensions} << power;
      if (words % (4 * unit) == 0 && words / (4 * unit) >= units)
        return {words / 4, power};
    }
    return {0, 1};
  }
};

} // namespace hvl::engines
