#pragma once

#include <cstdint>
#include <memory>

#include <sycl/sycl.hpp>

namespace kestro::hvl::rng::detail {

inline constexpr int sobol_bits = 32;

/// Memory of a SYCL queue, freed with its last owner.
using device_words = std::shared_ptr<std::uint32_t>;

/// Where a digital sequence (sobol, niederreiter) stood, and its tables: `sobol_bits` words a dimension.
struct sobol_gpu_state {
  std::uint32_t coordinate = 0;   // record offset 20: dimension of the next value
  std::uint32_t point = 0;        // record offset 16: number of the next point
  std::uint32_t dimensions = 0;   // record offset 24
  std::uint32_t own = 0;          // record offset 28: whether the numbers are the caller's own
  device_words direction_numbers; // v(d, k)
  device_words index_bits;        // v(d, k) ^ v(d, k - 1): what bit k of a point's number contributes
};

/// Takes over position and direction numbers of a stream's record. When there is no memory for the tables the engine stays
/// as it was.
void sobol_vqs_stream_to_gpu_state(const sycl::queue& queue, sobol_gpu_state& engine, const void* stream);

} // namespace kestro::hvl::rng::detail
