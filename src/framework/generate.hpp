#pragma once

#include <kestro/hvl/rng/functions.hpp>

#include "framework/dispatch.hpp"

/// The public `generate`, instantiated for every engine and distribution.
namespace kestro::hvl::rng {

template <class Distribution, class Engine>
void generate(const Distribution& distribution, Engine& engine, std::int64_t n,
              sycl::buffer<typename Distribution::result_type, 1>& r) {
  using namespace detail;
  generate_device_dispatch<Distribution, Engine>(engine_access::queue<Engine>(engine), distribution,
                                                 engine_access::impl<Engine>(engine, "generate"), n,
                                                 buffer_output<typename Distribution::result_type>{r});
}

template <class Distribution, class Engine>
sycl::event generate(const Distribution& distribution, Engine& engine, std::int64_t n,
                     typename Distribution::result_type* r, const std::vector<sycl::event>& dependencies) {
  using namespace detail;
  return generate_device_dispatch<Distribution, Engine>(
      engine_access::queue<Engine>(engine), distribution, engine_access::impl<Engine>(engine, "generate"), n,
      usm_output<typename Distribution::result_type>{r, dependencies});
}

} // namespace kestro::hvl::rng
