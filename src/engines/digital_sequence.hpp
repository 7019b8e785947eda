#pragma once

#include <memory>
#include <string>

#include "engines/digital_state.hpp"
#include "framework/device_state.hpp"
#include "framework/generation.hpp"

/// Digital sequences: their words follow from a position and from tables, which on a GPU device live in its memory.
namespace kestro::hvl::rng::detail {

/// The tables of an engine, which all its work reads.
struct digital_tables final : device_state {
  sobol_gpu_state state;
};

template <class Engine>
struct digital_extension : no_extension {
  /// Throws `device_bad_alloc`.
  void attach(const sycl::queue& queue, const stream_handle& stream) {
    std::unique_ptr<digital_tables, retire> made(new digital_tables);
    sobol_vqs_stream_to_gpu_state(queue, made->state, stream.get());
    if (made->state.direction_numbers == nullptr)
      throw device_bad_alloc("rng", about<Engine>.name, queue.get_device());
    tables = std::move(made);
  }

  std::unique_ptr<digital_tables, retire> tables;
};

/// Calls follow each other, so that the last one is the last to read the tables.
template <class Engine>
struct digital_generation {
  static constexpr bool has_substream_modes = false;

  template <class Transform, class Target>
  static sycl::event submit(engine_base_impl<Engine>& impl, sycl::queue& queue, const Transform& transform,
                            std::uint64_t words, std::int64_t n, const Target& target) {
    digital_tables& tables = *impl.extension().tables;
    auto state = definition_of<Engine>::state_of(
        impl.stream().template record<typename definition_of<Engine>::record>());
    state.numbers = tables.state.direction_numbers.get();
    state.stride = sobol_bits;
    sycl::event event = submit_at_position<Engine>(queue, state, &tables.last(), transform, n, target);
    tables.set_last(event);
    impl.skip_ahead(words);
    return event;
  }
};

/// Throws `invalid_argument` for a number of dimensions that the engine does not have.
template <class Engine>
auto make_digital_engine(const sycl::queue& queue, std::uint32_t dimensions) {
  constexpr std::uint32_t most = definition_of<Engine>::most_dimensions;
  if (dimensions == 0 || dimensions > most)
    throw invalid_argument("rng", about<Engine>.name,
                           "dimensions is out of range [1, " + std::to_string(most) + "]");
  return make_engine_impl_of_seed<Engine>(queue, dimensions);
}

/// Throws `invalid_argument` for words that the stream library refuses.
template <class Engine, class Words>
auto make_digital_engine_of_words(const sycl::queue& queue, const Words& words) {
  vqs_stream stream = nullptr;
  const int status = vqsNewStreamEx_64(&stream, about<Engine>.identifier,
                                       static_cast<std::int64_t>(std::size(words)), std::data(words));
  if (status == VQS_STATUS_BAD_PARAMETER)
    throw invalid_argument("rng", about<Engine>.name, "words");
  check_stream_status(status, "engine initialization", "initialization failure");
  return make_engine_impl<Engine>(queue, stream_handle(stream));
}

} // namespace kestro::hvl::rng::detail
