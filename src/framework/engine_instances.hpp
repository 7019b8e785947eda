#pragma once

#include "framework/engine_base.hpp"
#include "framework/state.hpp"

/// In an engine's source file, at global scope: everything of it that does not depend on a distribution.
#define KESTRO_HVL_INSTANTIATE_ENGINE(engine)                                                                \
  template class kestro::hvl::rng::detail::engine_base<kestro::hvl::rng::engine>;                            \
  namespace kestro::hvl::rng {                                                                               \
  template KESTRO_HVL_API std::int64_t get_state_size(engine&);                                              \
  template KESTRO_HVL_API void save_state(engine&, unsigned char*);                                          \
  template KESTRO_HVL_API void save_state(engine&, const std::string&);                                      \
  template KESTRO_HVL_API engine load_state<engine>(const sycl::queue&, const unsigned char*);               \
  template KESTRO_HVL_API engine load_state<engine>(const sycl::queue&, const std::string&);                 \
  }
