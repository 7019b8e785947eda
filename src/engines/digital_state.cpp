#include "engines/digital_state.hpp"

#include <cstddef>
#include <utility>

#include <hvl/engines/digital_sequence.hpp>

namespace kestro::hvl::rng::detail {
namespace {

using sequence = ::hvl::engines::digital_sequence;

device_words shared_words(const sycl::queue& queue, std::size_t count) {
  return {sycl::malloc_shared<std::uint32_t>(count, queue), [queue](std::uint32_t* words) {
            if (words != nullptr)
              sycl::free(words, queue);
          }};
}

} // namespace

void sobol_vqs_stream_to_gpu_state(const sycl::queue& queue, sobol_gpu_state& engine, const void* stream) {
  const auto& record = *static_cast<const sequence::record*>(stream);
  sobol_gpu_state state;
  state.coordinate = record.coordinate;
  state.point = record.point;
  state.dimensions = record.dimensions;
  state.own = record.own;
  const std::size_t words = std::size_t{state.dimensions} * sobol_bits;
  state.direction_numbers = shared_words(queue, words);
  state.index_bits = shared_words(queue, words);
  if (state.direction_numbers == nullptr || state.index_bits == nullptr)
    return;
  for (std::size_t d = 0; d < state.dimensions; ++d) {
    const std::uint32_t* const numbers = sequence::direction_numbers(record) + sequence::record_stride * d;
    std::uint32_t before = 0;
    for (std::size_t k = 0; k < sobol_bits; ++k) {
      state.direction_numbers.get()[sobol_bits * d + k] = numbers[k];
      state.index_bits.get()[sobol_bits * d + k] = numbers[k] ^ before;
      before = numbers[k];
    }
  }
  engine = std::move(state);
}

} // namespace kestro::hvl::rng::detail
