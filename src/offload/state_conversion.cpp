#include "offload/state_conversion.hpp"

#include <cstddef>
#include <cstring>
#include <utility>

namespace kestro::hvl::rng::detail {
namespace {

/// 32-bit fields of a stream record, by byte offset.
std::uint32_t field(const void* record, std::size_t offset) {
  std::uint32_t word;
  std::memcpy(&word, static_cast<const std::byte*>(record) + offset, sizeof word);
  return word;
}

constexpr std::size_t word_bytes = sizeof(std::uint32_t);

namespace sobol_record {
constexpr std::size_t point = 16;
constexpr std::size_t dimensions = 20;
constexpr std::size_t coordinate = 24;
constexpr std::size_t first_point = 28;
constexpr std::size_t direction_numbers = 256;
constexpr std::size_t dimension_bytes = 132;
} // namespace sobol_record

device_words shared_words(const sycl::queue& queue, std::size_t count) {
  return {sycl::malloc_shared<std::uint32_t>(count, queue), [queue](std::uint32_t* words) {
            if (words != nullptr)
              sycl::free(words, queue);
          }};
}

} // namespace

void sobol_vqs_stream_to_gpu_state(const sycl::queue& queue, sobol_gpu_state& engine, const void* stream) {
  sobol_gpu_state state;
  state.dimensions = field(stream, sobol_record::dimensions);
  state.point = field(stream, sobol_record::point);
  state.coordinate = field(stream, sobol_record::coordinate);
  state.first_point = field(stream, sobol_record::first_point);
  state.origin = field(stream, sobol_record::first_point);
  const std::size_t words = std::size_t{state.dimensions} * sobol_bits;
  state.direction_numbers = shared_words(queue, words);
  state.index_bits = shared_words(queue, words);
  if (state.direction_numbers == nullptr || state.index_bits == nullptr)
    return;
  for (std::size_t d = 0; d < state.dimensions; ++d) {
    std::uint32_t before = 0;
    for (std::size_t k = 0; k < sobol_bits; ++k) {
      const std::uint32_t v =
          field(stream, sobol_record::direction_numbers + sobol_record::dimension_bytes * d + word_bytes * k);
      state.direction_numbers.get()[sobol_bits * d + k] = v;
      state.index_bits.get()[sobol_bits * d + k] = v ^ before;
      before = v;
    }
  }
  engine = std::move(state);
}

} // namespace kestro::hvl::rng::detail
