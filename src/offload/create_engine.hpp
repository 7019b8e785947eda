#pragma once

#include <cstdint>
#include <memory>
#include <type_traits>

#include "engines/mrg32k3a.hpp"
#include "framework/engine_impl.hpp"

/// Implementation objects for a GPU queue, made and destroyed by hand.
namespace kestro::hvl::rng::detail::gpu {

template <class Engine, class... Arguments>
engine_base_impl<Engine>* new_engine(const sycl::queue& queue, Arguments&&... arguments) {
  auto impl = std::make_unique<engine_base_impl_backend<Engine, device_type::gpu>>(
      std::forward<Arguments>(arguments)...);
  if (impl->stream().get() != nullptr)
    impl->extension().attach(queue, impl->stream());
  return impl.release();
}

template <class Engine>
engine_base_impl<Engine>* create_engine(const sycl::queue& queue, std::uint64_t seed) {
  return new_engine<Engine>(queue, engine_traits<Engine>::identifier, seed);
}

template <class Engine>
engine_base_impl<Engine>* create_engine(const sycl::queue& queue, std::int64_t count,
                                        const std::uint32_t* words) {
  return new_engine<Engine>(queue, engine_traits<Engine>::identifier, count, words);
}

template <class Engine>
engine_base_impl<Engine>* create_engine(const sycl::queue& queue, engine_base_impl<Engine>* other) {
  return new_engine<Engine>(queue, other);
}

/// In a mode, for the engine that has modes.
template <class Engine>
requires std::is_same_v<Engine, mrg32k3a> engine_base_impl<Engine>
*create_engine(const sycl::queue& queue, std::uint64_t seed, const mrg32k3a_any_mode& mode) {
  std::unique_ptr<engine_base_impl<Engine>> engine(create_engine<Engine>(queue, seed));
  set_mode(engine->stream(), mode);
  return engine.release();
}

template <class Engine>
requires std::is_same_v<Engine, mrg32k3a> engine_base_impl<Engine>
*create_engine(const sycl::queue& queue, std::int64_t count, const std::uint32_t* words,
               const mrg32k3a_any_mode& mode) {
  std::unique_ptr<engine_base_impl<Engine>> engine(create_engine<Engine>(queue, count, words));
  set_mode(engine->stream(), mode);
  return engine.release();
}

/// A copy of a stream of the host-side interface. It gives the one sequence, as that interface does, whatever mode the
/// stream's state was saved in. No stream when the copy fails.
template <class Engine>
stream_handle copy_of_host_stream(vqs_stream stream) {
  vqs_stream handle = nullptr;
  if (vqsCopyStream_64(&handle, stream) != VQS_STATUS_OK)
    return stream_handle();
  const stream_handle copy(handle);
  if constexpr (std::is_same_v<Engine, mrg32k3a>)
    set_mode(copy, mrg32k3a_mode::standard());
  return copy;
}

/// Around a copy of a stream. Unlike in the other forms a failure of the copy is not looked at: the object then
/// has no stream, and may only be asked for that and deleted.
template <class Engine>
engine_base_impl<Engine>* create_engine(const sycl::queue& queue, void* stream) {
  return new_engine<Engine>(queue, copy_of_host_stream<Engine>(stream));
}

template <class Engine>
void delete_engine(const sycl::queue&, engine_base_impl<Engine>* impl) {
  delete impl;
}

} // namespace kestro::hvl::rng::detail::gpu
