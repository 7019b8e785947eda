#include "offload/state_conversion.hpp"

#include <cstddef>
#include <cstring>

namespace kestro::hvl::rng::detail {
namespace {

/// A 32-bit field of a stream record, by byte offset.
void set_field(void* record, std::size_t offset, std::uint32_t word) {
  std::memcpy(static_cast<std::byte*>(record) + offset, &word, sizeof word);
}

constexpr std::size_t word_bytes = sizeof(std::uint32_t);

namespace mt2203_record {
constexpr std::size_t words = 16;
constexpr std::size_t position = 292;
} // namespace mt2203_record

} // namespace

// The ring holds all 69 live words, so the recurrence and its twist constant, which belongs to the record's own
// parameter set, come in at the host's next draw.
void mt2203_gpu_state_to_vqs_stream(mt2203_gpu_state& engine, void* stream) {
  engine.last.wait();
  const std::size_t position = engine.ring[mt2203_ring_words];
  for (std::size_t k = 0; k < mt2203_words; ++k)
    set_field(stream, mt2203_record::words + word_bytes * k, engine.ring[(position + k) % mt2203_ring_words]);
  set_field(stream, mt2203_record::position, mt2203_words);
}

} // namespace kestro::hvl::rng::detail
