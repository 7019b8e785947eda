#pragma once

#include <cstdint>

#include <sycl/sycl.hpp>

/// Conversions between streams of the host-side interface and device states, for the engines whose device state
/// is laid out here. (Engines on a ring: framework/ring; sobol: engines/digital_state.hpp. The other engines generate
/// from a copy of the stream, which is skipped ahead.) `stream` is the stream's record; its first 16 bytes, the header, are never touched.
namespace kestro::hvl::rng::detail {

inline constexpr int mt2203_words = 69;
inline constexpr int mt2203_ring_words = 101;

/// A ring of 101 words, in which the 69 words from `position` on are live, oldest first.
struct mt2203_gpu_state {
  const std::uint32_t* ring; // 101 words and then the position, in memory that the host reads
  sycl::event last;          // of the work that uses the ring
};

/// Waits for the last work, then writes the 69 words from the device's position on and marks them as used up: the
/// host regenerates before its next draw.
void mt2203_gpu_state_to_vqs_stream(mt2203_gpu_state& engine, void* stream);

} // namespace kestro::hvl::rng::detail
