#pragma once

#include <type_traits>

#include "../distributions.hpp"
#include "../engines.hpp"

/// Which types `generate` takes: those that the library holds instances for.
namespace kestro::hvl::rng::detail {

template <class T>
inline constexpr bool is_distribution = false;
#define KESTRO_HVL_DISTRIBUTION(family, ...)                                                                 \
  template <>                                                                                                \
  inline constexpr bool is_distribution<__VA_ARGS__> = true;
#include "distributions.def"
#undef KESTRO_HVL_DISTRIBUTION

template <class T>
inline constexpr bool is_engine = false;
#define KESTRO_HVL_ENGINE(name)                                                                              \
  template <>                                                                                                \
  inline constexpr bool is_engine<name> = true;
#include "engines.def"
#undef KESTRO_HVL_ENGINE

template <class Distribution, class Engine>
inline constexpr bool is_listed = is_distribution<Distribution>&& is_engine<Engine>;

} // namespace kestro::hvl::rng::detail
