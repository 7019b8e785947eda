// Saved states as bytes: a header of four little-endian 32-bit words (magic, format version, engine
// identifier, payload bytes), the record's fields in their order, little-endian, of engines with tables the words that
// their record_tables name, and the CRC-32 of all before it. Version 2, which is written, added the substreams of
// mrg32k3a; version 1 is read too.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "stream.hpp"

namespace hvl::streams {

inline constexpr std::size_t state_header_bytes = 16;

std::size_t saved_state_bytes(const engine& e, const void* record) noexcept;
std::size_t most_saved_state_bytes(const engine& e) noexcept;

// `out` has saved_state_bytes.
void encode_state(const engine& e, const void* record, std::span<std::uint8_t> out) noexcept;

struct state_header {
  const engine* e = nullptr;
  std::int32_t id = 0; // of the engine's member
  std::uint32_t version = 0;
  std::size_t state_bytes = 0; // altogether; decode_state tells whether the fields say the same
};

// Returns a status.
int read_state_header(std::span<const std::uint8_t, state_header_bytes> bytes, state_header& header) noexcept;

// The same for a state of unknown length, of which no more is read than the fields.
int measure_state(const std::uint8_t* memory, state_header& header);

// Builds a record from exactly one saved state, or returns a status other than 0. May throw std::bad_alloc.
int decode_state(std::span<const std::uint8_t> state, record_pointer& record);

} // namespace hvl::streams
