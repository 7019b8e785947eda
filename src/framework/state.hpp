#pragma once

#include <kestro/hvl/rng/functions.hpp>

#include "framework/engine_impl.hpp"

/// Saving and loading, instantiated once per engine in its source file. The bytes are the stream library's.
namespace kestro::hvl::rng {

namespace detail {

/// `failure` is what the exception says before the reason.
inline void check_state_status(int status, const char* function, const std::string& failure) {
  if (status != VQS_STATUS_OK)
    throw computation_error("rng", function, failure + ": " + vqsStatusText(status));
}

/// The stream with all of the engine's state.
template <class Engine>
const stream_handle& stream_to_save(Engine& engine) {
  auto& impl = engine_access::impl<Engine>(engine, "save_state");
  impl.extension().check_saved();
  return impl.up_to_date_stream();
}

/// A new engine on `queue` around the stream that `load` makes.
template <class Engine, class Load>
Engine load_engine(const sycl::queue& queue, const std::string& failure, Load load) {
  Engine engine(queue, 1);
  vqs_stream stream = nullptr;
  check_state_status(load(&stream), "load_state", failure);
  stream_handle owner(stream);
  if (!about<Engine>.has_member(vqsEngineOfStream(stream)))
    throw computation_error("rng", "load_state", failure + ": the state of another engine");
  engine_access::replace_impl<Engine>(engine, make_engine_impl<Engine>(queue, std::move(owner)));
  return engine;
}

} // namespace detail

template <class Engine>
std::int64_t get_state_size(Engine& engine) {
  const std::int64_t bytes =
      vqsGetStreamSize_64(detail::engine_access::impl<Engine>(engine, "get_state_size").stream().get());
  if (bytes <= 0)
    throw computation_error("rng", "get_state_size", "failed to get state size");
  return bytes;
}

template <class Engine>
void save_state(Engine& engine, unsigned char* mem) {
  const auto& stream = detail::stream_to_save(engine);
  detail::check_state_status(vqsSaveStreamM_64(stream.get(), mem), "save_state",
                             "failed to save state to the memory");
}

template <class Engine>
void save_state(Engine& engine, const std::string& filename) {
  const auto& stream = detail::stream_to_save(engine);
  detail::check_state_status(vqsSaveStreamF_64(stream.get(), filename.c_str()), "save_state",
                             "failed to save state to the file: " + filename);
}

template <class Engine>
Engine load_state(const sycl::queue& queue, const unsigned char* mem) {
  return detail::load_engine<Engine>(queue, "failed to load state from the memory",
                                     [mem](vqs_stream* stream) { return vqsLoadStreamM_64(stream, mem); });
}

template <class Engine>
Engine load_state(const sycl::queue& queue, const std::string& filename) {
  return detail::load_engine<Engine>(
      queue, "failed to load state from the file: " + filename,
      [&filename](vqs_stream* stream) { return vqsLoadStreamF_64(stream, filename.c_str()); });
}

} // namespace kestro::hvl::rng
