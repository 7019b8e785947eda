// An engine as the rest of the library sees it: a record, a few plain functions on it, and the list of all
// engines.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "hvl/streams.h"
#include "hvl/streams_record.h"
#include "hvl/streams_scaling.hpp"

namespace hvl::streams {

// The type in which an engine delivers its words.
enum class word_kind : std::uint8_t { signed32, unsigned32, unsigned64 };

inline constexpr std::size_t word_kinds = 3;

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

// The functions are called with a record of this engine. All but skip are noexcept; skip may run out of
// memory and then leaves the record as it was.
struct engine {
  std::int32_t id;
  const char* name;
  word_kind kind;
  word_scale scale;
  bool has_uniform_bits;
  std::uint32_t record_bytes;
  std::uint32_t words_per_thread; // a smaller share of a call does not repay the skip to its start
  std::span<const record_field> fields;

  void (*seed)(void* record, std::uint64_t seed) noexcept;
  void (*seed_words)(void* record, std::span<const std::uint32_t> words) noexcept;
  bool (*in_range)(const void* record) noexcept;

  // Writes the next `count` words, of the engine's kind, and advances.
  void (*draw)(void* record, void* words, std::size_t count) noexcept;

  // Advances by the number that `count` spells, least significant 64-bit word first.
  void (*skip)(void* record, std::span<const std::uint64_t> count);

  // Null for an engine that cannot.
  void (*leapfrog)(void* record, std::uint64_t index, std::uint64_t stride) noexcept;
};

#define HVL_STREAMS_ENGINE(name, id) extern const engine name##_engine;
#include "engines.def"
#undef HVL_STREAMS_ENGINE

// Position in engines.def, by which tables of kernels are indexed.
enum class engine_index : std::uint8_t {
#define HVL_STREAMS_ENGINE(name, id) name,
#include "engines.def"
#undef HVL_STREAMS_ENGINE
  count
};

inline constexpr std::size_t engine_count = static_cast<std::size_t>(engine_index::count);

// Null when there is none.
const engine* find_engine(std::int32_t id) noexcept;
std::size_t index_of(const engine& e) noexcept;
std::span<const engine* const> all_engines() noexcept;

} // namespace hvl::streams
