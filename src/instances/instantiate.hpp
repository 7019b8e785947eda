#pragma once

/// What the units of this folder hold. All at global scope.

/// The public `generate` of an engine and a distribution.
#define KESTRO_HVL_INSTANTIATE(engine, ...)                                                                  \
  namespace kestro::hvl::rng {                                                                               \
  template KESTRO_HVL_API void generate(const __VA_ARGS__&, engine&, std::int64_t,                           \
                                        sycl::buffer<__VA_ARGS__::result_type, 1>&);                         \
  template KESTRO_HVL_API sycl::event generate(const __VA_ARGS__&, engine&, std::int64_t,                    \
                                               __VA_ARGS__::result_type*, const std::vector<sycl::event>&);  \
  }

/// The path of a CPU device, which does not know the engine's type: `prefix` is extern where it stands elsewhere.
#define KESTRO_HVL_INSTANTIATE_HOST_PATH(prefix, ...)                                                        \
  namespace kestro::hvl::rng::detail {                                                                       \
  prefix template sycl::event generate_on_host(engine_state&, sycl::queue&,                                  \
                                               const descriptor<__VA_ARGS__, device_type::cpu>&,             \
                                               std::int64_t, const usm_output<__VA_ARGS__::result_type>&);   \
  prefix template sycl::event generate_on_host(engine_state&, sycl::queue&,                                  \
                                               const descriptor<__VA_ARGS__, device_type::cpu>&,             \
                                               std::int64_t,                                                 \
                                               const buffer_output<__VA_ARGS__::result_type>&);              \
  }
