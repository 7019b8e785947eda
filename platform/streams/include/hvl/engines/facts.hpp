// What an engine is, for hosts and kernels alike. hvl/engines/<name>.hpp has one struct of the engine's name:
//
//   static constexpr facts about;
//   using record = ...;                            the one behind a stream handle
//   using word = ...;
//   static constexpr std::uint32_t raw(word);      its 32 bits
//
// An engine whose words follow from a position:
//
//   struct state;                                  trivially copyable; passed to kernels by value
//   static constexpr state state_of(const record&);
//   struct cursor { constexpr void next(word (&words)[4]); };
//   static constexpr cursor at(const state&, std::uint64_t block);
//   static constexpr int blocks_per_item;          the fewest that repay a jump
//
// The first call of next() gives the words 4 block ... 4 block + 3 from the state's position on, each further call
// the four that follow. A cursor may refer to the state.
//
// Where passing over many blocks costs no more than making one, the blocks of a work-item lie apart:
//
//   struct leap { std::uint64_t blocks; ... };     over that many
//   static constexpr leap leap_of(const state&, std::uint64_t unit, std::uint64_t units);
//   struct cursor { constexpr void pass(const leap&); };
//
// The leap is over `units` units of so many blocks, or somewhat more of them. Where there is no such leap it is over no blocks, and
// a pass by it leads to no words of the sequence; a work-item makes one after its last unit all the same.
//
// An engine that runs a recurrence over its last words:
//
//   struct recurrence {
//     static constexpr int size;                   how many words back it reaches
//     static constexpr int step;                   words that follow from live ones alone; a multiple of 4
//     static constexpr int degree, unit;           of a polynomial in the shift by `unit` words that annuls the sequence
//     constexpr std::uint32_t next(const std::uint32_t* x) const;   x[size] from x[0], x[1], ...; where unit is not 1,
//                                                                   next(x, its place in its unit)
//     constexpr std::uint32_t output(std::uint32_t y) const;
//   };
//   static constexpr recurrence recurrence_of(const record&);
//
// Everything is constexpr and compiles in kernels: no exceptions, virtual functions, function pointers or libm. What
// vector units call is always_inline, since a copy of its own could be compiled for one instruction set and linked
// for all.
#pragma once

#include <cstdint>

#include "hvl/streams.h"
#include "hvl/streams_record.h"
#include "hvl/streams_scaling.hpp"

namespace hvl::engines {

using streams::word_scale;

// How an engine delivers its words, and how values read them.
enum class word_kind : std::uint8_t { signed32, unsigned32, unsigned64 };

// What callers are offered; by_words includes by_number.
enum class skip_form : std::uint8_t { none, by_number, by_words };

struct facts {
  const char* name;
  std::int32_t identifier; // of the first member
  std::int32_t members;    // identifiers identifier ... identifier + members - 1
  word_kind kind;
  word_scale scale;
  bool has_uniform_bits;
  skip_form skip;
  bool has_leapfrog;
  bool is_reproducible;         // a seed gives the same numbers again
  bool is_quasi_random = false; // a seed is a number of dimensions

  constexpr bool has_member(std::int32_t id) const { return id >= identifier && id - identifier < members; }
};

// The next four words. Written out, as a GPU keeps no array in registers whose indices are not constants.
template <class Word, class Next>
[[gnu::always_inline]] constexpr void fill_block(Word (&words)[4], const Next& next) {
  words[0] = next();
  words[1] = next();
  words[2] = next();
  words[3] = next();
}

// Which member of its engine a record is of: 0 ... members - 1.
template <class Engine>
[[gnu::always_inline]] constexpr std::int32_t member_of(const typename Engine::record& r) {
  return r.header.engine - Engine::about.identifier;
}

} // namespace hvl::engines
