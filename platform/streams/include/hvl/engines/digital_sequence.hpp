// Digital sequences in base 2, point by point: coordinate d of point n is the exclusive or of the direction numbers of
// dimension d at the set bits of the Gray code of n (I. A. Antonov, V. M. Saleev, "An economic method of computing
// LP-tau sequences", USSR Computational Mathematics and Mathematical Physics 19 (1979)). After 2^32 points they begin anew.
#pragma once

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

  static constexpr int blocks_per_item = 1;

  struct cursor {
    state s;
    constexpr void next(word (&words)[4]) {
      fill_block(words, [this] {
        const word w = s.value();
        s.step();
        return w;
      });
    }
  };

  static constexpr cursor at(const state& from, std::uint64_t block) {
    cursor result{from};
    result.s.advance(4 * block);
    return result;
  }
};

} // namespace hvl::engines
