#pragma once

#include <cstdint>

#include "framework/ring/generation.hpp"

namespace kestro::hvl::rng::detail {

template <>
struct ring_traits<sfmt19937> {
  static int load(const stream_handle& stream, std::uint32_t* words);
  static void store(const std::uint32_t* words, int place, const stream_handle& stream);
  static int jump_polynomial(const definition_of<sfmt19937>::recurrence&, std::uint64_t distance,
                             std::uint32_t* coefficients);
};

template <>
struct engine_extension<sfmt19937> : ring_extension<sfmt19937> {};

template <>
struct engine_generation<sfmt19937> : generation_on_ring<sfmt19937> {};

} // namespace kestro::hvl::rng::detail
