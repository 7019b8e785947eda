// Engines that encipher a 128-bit counter into blocks of four words (J. K. Salmon, M. A. Moraes, R. O. Dror,
// D. E. Shaw, "Parallel random numbers: as easy as 1, 2, 3", SC 2011).
#pragma once

#include "hvl/engines/facts.hpp"

namespace hvl::engines {

// Modulo 2^128.
struct counter128 {
  std::uint64_t low;
  std::uint64_t high;

  [[gnu::always_inline]] constexpr counter128 operator+(counter128 blocks) const {
    const std::uint64_t sum = low + blocks.low;
    return {sum, high + blocks.high + static_cast<std::uint64_t>(sum < low)};
  }
  [[gnu::always_inline]] constexpr counter128 operator+(std::uint64_t blocks) const {
    return *this + counter128{blocks, 0};
  }
  [[gnu::always_inline]] constexpr counter128 operator-(std::uint64_t blocks) const {
    return {low - blocks, high - static_cast<std::uint64_t>(low < blocks)};
  }
};

// Cipher has key_words and encipher(words, key), which replaces a counter by its block.
template <class Cipher>
struct counter_engine {
  using word = std::uint32_t;
  static constexpr std::uint32_t raw(word w) { return w; }
  static constexpr int blocks_per_item = 1;

  // Next words: the last `remaining` (0 ... 4) of block(counter - 1), then block(counter), ...
  struct state {
    std::uint32_t key[Cipher::key_words];
    std::uint32_t counter[4]; // least significant word first
    std::uint32_t remaining;

    [[gnu::always_inline]] constexpr counter128 next_block() const {
      return {std::uint64_t{counter[1]} << 32 | counter[0], std::uint64_t{counter[3]} << 32 | counter[2]};
    }
    constexpr void set_next_block(counter128 next) {
      counter[0] = static_cast<std::uint32_t>(next.low);
      counter[1] = static_cast<std::uint32_t>(next.low >> 32);
      counter[2] = static_cast<std::uint32_t>(next.high);
      counter[3] = static_cast<std::uint32_t>(next.high >> 32);
    }
  };

  static constexpr void block(const state& s, counter128 at, word (&words)[4]) {
    words[0] = static_cast<std::uint32_t>(at.low);
    words[1] = static_cast<std::uint32_t>(at.low >> 32);
    words[2] = static_cast<std::uint32_t>(at.high);
    words[3] = static_cast<std::uint32_t>(at.high >> 32);
    Cipher::encipher(words, s.key);
  }

  // Words 4 index ... 4 index + 3 from the state's position on.
  static constexpr void generate(const state& s, std::uint64_t index, word (&words)[4]) {
    const counter128 next = s.next_block() + index;
    const std::uint32_t remaining = s.remaining;
    if (remaining % 4 == 0) { // whole blocks
      block(s, next - remaining / 4, words);
    } else { // the last words of one block, then the first of the next
      word first[4] = {}, second[4] = {};
      block(s, next - 1, first);
      block(s, next, second);
      // Indices are constants, as a GPU keeps no array in registers that is indexed otherwise.
      const auto pick = [remaining](word of_three, word of_two, word of_one) {
        return remaining == 3 ? of_three : remaining == 2 ? of_two : of_one;
      };
      words[0] = pick(first[1], first[2], first[3]);
      words[1] = pick(first[2], first[3], second[0]);
      words[2] = pick(first[3], second[0], second[1]);
      words[3] = pick(second[0], second[1], second[2]);
    }
  }

  struct cursor {
    const state& from;
    std::uint64_t index;
    constexpr void next(word (&words)[4]) { generate(from, index++, words); }
  };

  static constexpr cursor at(const state& from, std::uint64_t index) { return {from, index}; }
};

} // namespace hvl::engines
