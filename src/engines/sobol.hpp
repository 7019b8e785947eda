#pragma once

#include "engines/digital_sequence.hpp"

namespace kestro::hvl::rng::detail {

template <>
struct engine_extension<sobol> : digital_extension<sobol> {};

template <>
struct engine_generation<sobol> : digital_generation<sobol> {};

} // namespace kestro::hvl::rng::detail
