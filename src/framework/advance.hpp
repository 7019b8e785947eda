#pragma once

#include <cstdint>
#include <initializer_list>

#include "framework/engine_impl.hpp"
#include "framework/ring/generation.hpp"

/// Skips and leapfrog, for either kind of device.
namespace kestro::hvl::rng::detail {

namespace gpu {

template <class Engine>
void skip_ahead(sycl::queue& queue, engine_base_impl<Engine>* impl, std::uint64_t n) {
  if constexpr (on_ring<Engine>)
    if (impl->extension().ring)
      return skip_on_ring(queue, *impl, n);
  impl->skip_ahead(n);
}

template <class Engine>
void skip_ahead(sycl::queue&, engine_base_impl<Engine>* impl, std::initializer_list<std::uint64_t> n) {
  static_assert(about<Engine>.skip == ::hvl::engines::skip_form::by_words);
  impl->skip_ahead(n);
}

template <class Engine>
void leapfrog(sycl::queue&, engine_base_impl<Engine>* impl, std::uint64_t idx, std::uint64_t stride) {
  static_assert(about<Engine>.has_leapfrog);
  impl->leapfrog(idx, stride);
}

} // namespace gpu

/// What the members of the public classes come to.
template <class Engine, class Count>
void skip_ahead(Engine& engine, Count n) {
  gpu::skip_ahead<Engine>(engine_access::queue<Engine>(engine),
                          &engine_access::impl<Engine>(engine, "skip_ahead"), n);
}

template <class Engine>
void leapfrog(Engine& engine, std::uint64_t idx, std::uint64_t stride) {
  gpu::leapfrog<Engine>(engine_access::queue<Engine>(engine),
                        &engine_access::impl<Engine>(engine, "leapfrog"), idx, stride);
}

} // namespace kestro::hvl::rng::detail
