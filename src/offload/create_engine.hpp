#pragma once

#include <cstdint>
#include <memory>

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
  return new_engine<Engine>(queue, about<Engine>.identifier, seed);
}

template <class Engine>
engine_base_impl<Engine>* create_engine(const sycl::queue& queue, std::int64_t count,
                                        const std::uint32_t* words) {
  return new_engine<Engine>(queue, about<Engine>.identifier, count, words);
}

template <class Engine>
engine_base_impl<Engine>* create_engine(const sycl::queue& queue, engine_base_impl<Engine>* other) {
  return new_engine<Engine>(queue, other);
}

/// Around a copy of a stream. Unlike in the other forms a failure of the copy is not looked at: the object then
/// has no stream, and may only be asked for that and deleted.
template <class Engine>
engine_base_impl<Engine>* create_engine(const sycl::queue& queue, void* stream) {
  vqs_stream copy = nullptr;
  static_cast<void>(vqsCopyStream_64(&copy, stream));
  return new_engine<Engine>(queue, copy == nullptr ? stream_handle() : stream_handle(copy));
}

template <class Engine>
void delete_engine(const sycl::queue&, engine_base_impl<Engine>* impl) {
  delete impl;
}

} // namespace kestro::hvl::rng::detail::gpu
