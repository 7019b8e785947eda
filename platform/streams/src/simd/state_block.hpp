// The workspace of engines whose record holds a block of 624 words and the place of the next one in it. A granule is a
// block.
#pragma once

#include <cstring>

#include "simd/value_sink.hpp"

namespace hvl::streams::HVL_STREAMS_ISA {
namespace {

constexpr std::size_t state_words = 624;

struct state_block {
  alignas(vector_alignment) std::uint32_t words[state_words + 16]; // behind the block: room for a vector
  std::uint64_t start;                                             // position at which the record was read
  std::uint64_t granules;                                          // granules run
  bool block_is_next; // the block itself is still to be delivered, as the next granule
};
static_assert(sizeof(state_block) <= workspace_bytes);

template <class Record>
std::uint32_t open_block(const void* record, void* workspace_memory) noexcept {
  const auto& r = *static_cast<const Record*>(record);
  auto& w = *static_cast<state_block*>(workspace_memory);
  static_assert(sizeof r.words == state_words * sizeof(std::uint32_t));
  std::memcpy(w.words, r.words, sizeof r.words);
  w.start = r.position == state_words ? 0 : r.position;
  w.granules = 0;
  w.block_is_next = r.position != state_words;
  return static_cast<std::uint32_t>(w.start);
}

template <class Record>
void close_block(const void* workspace_memory, void* record, std::uint64_t words_taken) noexcept {
  const auto& w = *static_cast<const state_block*>(workspace_memory);
  auto& r = *static_cast<Record*>(record);
  std::memcpy(r.words, w.words, sizeof r.words);
  r.position = static_cast<std::uint32_t>(w.start + words_taken - (w.granules - 1) * state_words);
}

} // namespace
} // namespace hvl::streams::HVL_STREAMS_ISA
