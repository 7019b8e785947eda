// An engine as the rest of the library sees it: its facts and a few plain functions on its record.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
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

struct record_delete {
  void operator()(void* record) const noexcept;
};
using record_pointer = std::unique_ptr<void, record_delete>;

// Of an engine whose records have tables behind their fields, as long as the fields say.
struct record_tables {
  // Saved states have words of them behind the fields, so many, which the fields alone give; a record that `extend` has
  // seen knows them.
  std::uint32_t most_words;
  std::uint32_t (*words)(const void* record) noexcept;
  std::uint32_t (*word)(const void* record, std::uint32_t index) noexcept;
  // Replaces a record whose fields are in range by one with its tables; `words` are those of a saved state.
  void (*extend)(record_pointer& record, std::span<const std::uint32_t> words);
};

// The functions are called with a record of this engine, whose header says which member it is. Seeding and advance may run
// out of memory, all others are noexcept; advance then leaves the record as it was.
struct engine : engines::facts {
  std::uint32_t field_bytes;      // of a record up to the end of its fields
  std::uint32_t words_per_thread; // a smaller share of a call does not repay the skip to its start
  std::span<const record_field> fields;

  // Return a status; a seed may be refused. The record is replaced where it gets tables.
  int (*seed)(record_pointer& record, std::uint64_t seed);
  int (*seed_words)(record_pointer& record, std::span<const std::uint32_t> words);

  bool (*in_range)(const void* record) noexcept;

  // Writes the next `count` words, of the engine's kind, and moves on.
  void (*draw)(void* record, void* words, std::size_t count) noexcept;

  // Moves on by the number that `count` spells, least significant 64-bit word first, in less than linear time. Every
  // engine that is reproducible can, whatever `skip` offers to callers: parts of a call begin this way.
  void (*advance)(void* record, std::span<const std::uint64_t> count);

  // Null where has_leapfrog is false.
  void (*leapfrog)(void* record, std::uint64_t index, std::uint64_t stride) noexcept;

  // Null for records of one size.
  const record_tables* tables;
};

#define HVL_ENGINE(name) extern const engine name##_engine;
#include "hvl/engines.def"
#undef HVL_ENGINE

// The engine that has a member of this identifier; null when there is none.
const engine* find_engine(std::int32_t id) noexcept;
std::span<const engine* const> all_engines() noexcept;

// A zeroed record with this header but for its size; throws std::bad_alloc.
record_pointer allocate_record(vqs_record_header header, std::size_t bytes);

inline std::size_t record_bytes(const void* record) noexcept {
  return static_cast<const vqs_record_header*>(record)->record_bytes;
}

} // namespace hvl::streams
