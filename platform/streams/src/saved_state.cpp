#include "saved_state.hpp"

#include <zlib.h>

#include <cstring>
#include <vector>

namespace hvl::streams {
namespace {

constexpr std::uint32_t state_magic = 0x534C5648; // "HVLS"
constexpr std::uint32_t state_version = 2;
constexpr std::size_t checksum_bytes = 4;

void put(std::uint8_t*& at, std::uint64_t value, std::size_t bytes) noexcept {
  for (std::size_t i = 0; i < bytes; ++i)
    *at++ = static_cast<std::uint8_t>(value >> (8 * i));
}

std::uint64_t get(const std::uint8_t*& at, std::size_t bytes) noexcept {
  std::uint64_t value = 0;
  for (std::size_t i = 0; i < bytes; ++i)
    value |= std::uint64_t{*at++} << (8 * i);
  return value;
}

std::size_t field_bytes(const engine& e, std::uint32_t version) noexcept {
  std::size_t bytes = 0;
  for (const record_field& field : e.fields)
    if (field.since <= version)
      bytes += std::size_t{field.word_bytes} * field.words;
  return bytes;
}

constexpr std::size_t table_word_bytes = sizeof(std::uint32_t);

std::uint32_t table_words(const engine& e, const void* record) noexcept {
  return e.tables != nullptr ? e.tables->words(record) : 0;
}

std::size_t payload_bytes(const engine& e, const void* record) noexcept {
  return field_bytes(e, state_version) + table_word_bytes * table_words(e, record);
}

// A record with the fields of a state, and no tables. Returns a status: the payload must be as long as the fields say.
int decode_fields(const state_header& header, const std::uint8_t* state, record_pointer& record) {
  record_pointer decoded = new_record(*header.e, header.id);
  const std::uint8_t* at = state + state_header_bytes;
  for (const record_field& field : header.e->fields) {
    if (field.since > header.version)
      continue;
    auto* target = static_cast<std::byte*>(decoded.get()) + field.offset_bytes;
    for (std::uint32_t i = 0; i < field.words; ++i, target += field.word_bytes) {
      const std::uint64_t word = get(at, field.word_bytes);
      std::memcpy(target, &word, field.word_bytes);
    }
  }
  if (!header.e->in_range(decoded.get()))
    return VQS_STATUS_STATE_RANGE;
  const std::size_t tables = table_word_bytes * table_words(*header.e, decoded.get());
  if (static_cast<std::size_t>(at - state) + tables + checksum_bytes != header.state_bytes)
    return VQS_STATUS_STATE_SIZE;
  record = std::move(decoded);
  return VQS_STATUS_OK;
}

std::uint32_t checksum(std::span<const std::uint8_t> bytes) noexcept {
  return static_cast<std::uint32_t>(
      crc32(crc32(0, nullptr, 0), bytes.data(), static_cast<uInt>(bytes.size())));
}

} // namespace

std::size_t saved_state_bytes(const engine& e, const void* record) noexcept {
  return state_header_bytes + payload_bytes(e, record) + checksum_bytes;
}

std::size_t most_saved_state_bytes(const engine& e) noexcept {
  const std::size_t words = e.tables != nullptr ? e.tables->most_words : 0;
  return state_header_bytes + field_bytes(e, state_version) + table_word_bytes * words + checksum_bytes;
}

void encode_state(const engine& e, const void* record, std::span<std::uint8_t> out) noexcept {
  std::uint8_t* at = out.data();
  put(at, state_magic, 4);
  put(at, state_version, 4);
  put(at, static_cast<std::uint32_t>(static_cast<const vqs_record_header*>(record)->engine), 4);
  put(at, payload_bytes(e, record), 4);
  for (const record_field& field : e.fields) {
    const auto* source = static_cast<const std::byte*>(record) + field.offset_bytes;
    for (std::uint32_t i = 0; i < field.words; ++i, source += field.word_bytes) {
      std::uint64_t word = 0;
      std::memcpy(&word, source, field.word_bytes);
      put(at, word, field.word_bytes);
    }
  }
  for (std::uint32_t i = 0; i < table_words(e, record); ++i)
    put(at, e.tables->word(record, i), table_word_bytes);
  put(at, checksum(out.first(static_cast<std::size_t>(at - out.data()))), checksum_bytes);
}

int read_state_header(std::span<const std::uint8_t, state_header_bytes> bytes,
                      state_header& header) noexcept {
  const std::uint8_t* at = bytes.data();
  if (get(at, 4) != state_magic)
    return VQS_STATUS_STATE_FORMAT;
  const auto version = static_cast<std::uint32_t>(get(at, 4));
  const auto id = static_cast<std::int32_t>(static_cast<std::uint32_t>(get(at, 4)));
  const engine* e = find_engine(id);
  if (version == 0 || version > state_version || e == nullptr)
    return VQS_STATUS_STATE_FORMAT;
  const std::size_t payload = get(at, 4);
  const std::size_t fields = field_bytes(*e, version);
  const std::size_t most_tables = e->tables != nullptr ? table_word_bytes * e->tables->most_words : 0;
  if (payload < fields || payload > fields + most_tables)
    return VQS_STATUS_STATE_SIZE;
  header = {e, id, version, state_header_bytes + payload + checksum_bytes};
  return VQS_STATUS_OK;
}

int measure_state(const std::uint8_t* memory, state_header& header) {
  const std::span<const std::uint8_t, state_header_bytes> start(memory, state_header_bytes);
  if (const int status = read_state_header(start, header); status != 0 || header.e->tables == nullptr)
    return status;
  record_pointer fields;
  return decode_fields(header, memory, fields);
}

int decode_state(std::span<const std::uint8_t> state, record_pointer& record) {
  if (state.size() < state_header_bytes)
    return VQS_STATUS_STATE_SIZE;
  state_header header;
  if (const int status = read_state_header(state.first<state_header_bytes>(), header); status != 0)
    return status;
  if (state.size() != header.state_bytes)
    return VQS_STATUS_STATE_SIZE;
  const std::span<const std::uint8_t> sealed = state.first(state.size() - checksum_bytes);
  const std::uint8_t* sum = state.data() + sealed.size();
  if (get(sum, checksum_bytes) != checksum(sealed))
    return VQS_STATUS_STATE_CHECKSUM;

  record_pointer decoded;
  if (const int status = decode_fields(header, state.data(), decoded); status != 0)
    return status;
  if (header.e->tables != nullptr) {
    const std::uint8_t* at = state.data() + state_header_bytes + field_bytes(*header.e, header.version);
    std::vector<std::uint32_t> words(table_words(*header.e, decoded.get()));
    for (std::uint32_t& word : words)
      word = static_cast<std::uint32_t>(get(at, table_word_bytes));
    header.e->tables->extend(decoded, words);
  }
  record = std::move(decoded);
  return VQS_STATUS_OK;
}

} // namespace hvl::streams
