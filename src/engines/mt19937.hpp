#pragma once

#include <cstdint>

#include "framework/ring/generation.hpp"

namespace kestro::hvl::rng::detail {

template <>
struct ring_traits<mt19937> {
  static int load(const stream_handle& stream, std::uint32_t* words);
  static void store(const std::uint32_t* words, int place, const stream_handle& stream);
  static int jump_polynomial(std::uint64_t distance, std::uint32_t* coefficients);
};

template <>
struct engine_extension<mt19937> : ring_extension<mt19937> {};

template <>
struct engine_generation<mt19937> : generation_on_ring<mt19937> {};

/// Writes to `out` the 624 words of the sequence that start at word `index` (0 ... 624) of the block `classic_words`.
void mt19937_state_shift(const std::uint32_t* classic_words, std::uint32_t* out, std::uint32_t index);

/// Replaces 624 consecutive words of the sequence by the 624 before them. (The lower 31 bits of the first of these
/// take no part in the sequence and come out 0.)
void mt19937_state_unwind(std::uint32_t* words);

} // namespace kestro::hvl::rng::detail
