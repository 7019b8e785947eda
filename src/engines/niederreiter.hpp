#pragma once

#include "engines/digital_sequence.hpp"

namespace kestro::hvl::rng::detail {

template <>
struct engine_extension<niederreiter> : digital_extension<niederreiter> {};

template <>
struct engine_generation<niederreiter> : digital_generation<niederreiter> {};

} // namespace kestro::hvl::rng::detail
