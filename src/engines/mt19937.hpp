#pragma once

#include <cstdint>

#include "engines/twister.hpp"

namespace kestro::hvl::rng::detail {

template <>
struct ring_traits<mt19937> : twister_ring<mt19937> {
  static int jump_polynomial(const recurrence&, std::uint64_t distance, std::uint32_t* coefficients);
};

template <>
struct engine_extension<mt19937> : ring_extension<mt19937> {};

template <>
struct engine_generation<mt19937> : generation_on_ring<mt19937> {};

} // namespace kestro::hvl::rng::detail
