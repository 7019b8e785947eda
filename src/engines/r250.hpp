#pragma once

#include <cstdint>

#include "framework/ring/generation.hpp"

namespace kestro::hvl::rng::detail {

template <>
struct ring_traits<r250> {
  static int load(const stream_handle& stream, std::uint32_t* words);
  static void store(const std::uint32_t* words, int place, const stream_handle& stream);
  static int jump_polynomial(const definition_of<r250>::recurrence&, std::uint64_t distance,
                             std::uint32_t* coefficients);
};

template <>
struct engine_extension<r250> : ring_extension<r250> {};

template <>
struct engine_generation<r250> : generation_on_ring<r250> {};

} // namespace kestro::hvl::rng::detail
