#pragma once

#include <cstdint>
#include <string>

#include "framework/generation.hpp"

namespace kestro::hvl::rng::detail {

template <class Distribution, class Engine>
constexpr bool is_offered =
    about<Engine>.has_uniform_bits || !distribution_traits<Distribution>::needs_uniform_bits;

/// Checks the arguments, picks the backend from the queue's device and submits one command group. Whatever is
/// refused is refused before the engine's state changes.
template <class Distribution, class Engine, class Target>
sycl::event generate_device_dispatch(sycl::queue& queue, const Distribution& distribution,
                                     engine_base_impl<Engine>& impl, std::int64_t n, const Target& target) {
  if constexpr (!is_offered<Distribution, Engine>) {
    throw unimplemented("rng", "generate",
                        std::string(distribution_traits<Distribution>::name) + " distribution and " +
                            about<Engine>.name + " engine combination");
  } else {
    const std::int64_t values = values_of(distribution, n);
    target.validate(values);
    if (device_type_of(queue.get_device(), "generate") == device_type::cpu) {
      using backend = engine_base_impl_backend<Engine, device_type::cpu>;
      return static_cast<backend&>(impl).generate(
          queue, descriptor<Distribution, device_type::cpu>(distribution), values, target);
    }
    using backend = engine_base_impl_backend<Engine, device_type::gpu>;
    return static_cast<backend&>(impl).generate(
        queue, descriptor<Distribution, device_type::gpu>(distribution), values, target);
  }
}

} // namespace kestro::hvl::rng::detail
