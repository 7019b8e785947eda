#pragma once

#include <typeinfo>

#include <kestro/hvl/rng/functions.hpp>

#include "framework/dispatch.hpp"
#include "service/traced_call.hpp"

/// The public `generate`, instantiated for every engine and distribution.
namespace kestro::hvl::rng {

template <class Distribution, class Engine, class>
void generate(const Distribution& distribution, Engine& engine, std::int64_t n,
              sycl::buffer<typename Distribution::result_type, 1>& r) {
  using namespace detail;
  const auto dispatch = [&] {
    return generate_device_dispatch<Distribution, Engine>(
        engine_access::queue<Engine>(engine), distribution, engine_access::impl<Engine>(engine, "generate"),
        n, buffer_output<typename Distribution::result_type>{r});
  };
  if (hvl::gpu::verbose_mode() == 0) [[likely]] {
    dispatch();
    return;
  }
  hvl::gpu::traced_call call(engine_access::queue<Engine>(engine), {typeid(Distribution), typeid(Engine), n},
                             r);
  call.finish(dispatch(), r);
}

template <class Distribution, class Engine, class>
sycl::event generate(const Distribution& distribution, Engine& engine, std::int64_t n,
                     typename Distribution::result_type* r, const std::vector<sycl::event>& dependencies) {
  using namespace detail;
  const auto dispatch = [&] {
    return generate_device_dispatch<Distribution, Engine>(
        engine_access::queue<Engine>(engine), distribution, engine_access::impl<Engine>(engine, "generate"),
        n, usm_output<typename Distribution::result_type>{r, dependencies});
  };
  if (hvl::gpu::verbose_mode() == 0) [[likely]]
    return dispatch();
  hvl::gpu::traced_call call(engine_access::queue<Engine>(engine), {typeid(Distribution), typeid(Engine), n},
                             r, dependencies);
  return call.finish(dispatch());
}

} // namespace kestro::hvl::rng
