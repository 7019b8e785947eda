// An engine as the rest of the library sees it: its facts and a few plain functions on its record.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "hvl/engines.hpp"

namespace hvl::streams {

using engines::word_kind;

constexpr std::size_t word_bytes(word_kind kind) {
  return kind == word_kind::unsigned64 ? 8 : 4;
}

// One array of words of a record, in saved states written word by word. States of an earlier format version than
// `since` are without it; it is then 0.
struct record_field {
  std::uint32_t offset_bytes;
  std::uint32_t word_bytes;
  std::uint32_t words;
  std::uint32_t since = 1;
};

// The functions are called with a record of this engine, whose header says which member it is. All but advance are
// noexcept; advance may run out of memory and then leaves the record as it was.
struct engine : engines::facts {
  std::uint32_t most_record_bytes; // what a new record has; seeding may lower its header's record_bytes
  std::uint32_t words_per_thread;  // a smaller share of a call does not repay the skip to its start
  std::span<const record_field> fields;

  // Return a status; a seed may be refused.
  int (*seed)(void* record, std::uint64_t seed) noexcept;
  int (*seed_words)(void* record, std::span<const std::uint32_t> words) noexcept;

  bool (*in_range)(const void* record) noexcept;

  // Writes the next `count` words, of the engine's kind, and moves on.
  void (*draw)(void* record, void* words, std::size_t count) noexcept;

  // Moves on by the number that `count` spells, least significant 64-bit word first, in less than linear time. Every
  // engine that is reproducible can, whatever `skip` offers to callers: parts of a call begin this way.
  void (*advance)(void* record, std::span<const std::uint64_t> count);

  // Null where has_leapfrog is false.
  void (*leapfrog)(void* record, std::uint64_t index, std::uint64_t stride) noexcept;
};

#define HVL_ENGINE(name) extern const engine name##_engine;
#include "hvl/engines.def"
#undef HVL_ENGINE

// The engine that has a member of this identifier; null when there is none.
const engine* find_engine(std::int32_t id) noexcept;
std::span<const engine* const> all_engines() noexcept;

inline std::size_t record_bytes(const void* record) noexcept {
  return static_cast<const vqs_record_header*>(record)->record_bytes;
}

} // namespace hvl::streams
