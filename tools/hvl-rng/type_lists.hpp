// The library's engine and distribution classes as lists of types.
#pragma once

#include <kestro/hvl/rng.hpp>

#include <cstddef>

namespace hvl_rng {

template <class... Types>
struct type_list {
  static constexpr std::size_t size = sizeof...(Types);
};

// The lists begin every element with a comma, hence the type that stands before the first.
template <class, class... Types>
using list_after = type_list<Types...>;

namespace listed {

using namespace kestro::hvl::rng; // the lists name their classes unqualified
using kestro::hvl::rng::gamma;    // <math.h> of the C library has another one

// clang-format off
#define KESTRO_HVL_ENGINE(name) , name
using engine_list = list_after<void
#include <kestro/hvl/rng/detail/engines.def>
>;
#undef KESTRO_HVL_ENGINE

#define KESTRO_HVL_DISTRIBUTION(family, ...) , __VA_ARGS__
using distribution_list = list_after<void
#include <kestro/hvl/rng/detail/distributions.def>
>;
#undef KESTRO_HVL_DISTRIBUTION
// clang-format on

} // namespace listed

using listed::distribution_list;
using listed::engine_list;

} // namespace hvl_rng
