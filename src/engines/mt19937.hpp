#pragma once

#include <cstdint>

#include <hvl/streams_record.h>
#include <kestro/hvl/rng/engines.hpp>

#include "framework/ring/generation.hpp"

namespace kestro::hvl::rng::detail {

template <>
struct engine_traits<mt19937> {
  static constexpr const char* name = "mt19937";
  static constexpr std::int32_t identifier = VQS_ENGINE_MT19937;
  static constexpr bool has_uniform_bits = true;
};

namespace gpu {

struct mt19937_recurrence {
  static constexpr int size = 624;
  static constexpr int middle = 397;
  static constexpr int step = 224;

  constexpr std::uint32_t next(const std::uint32_t* x) const {
    const std::uint32_t joined = (x[0] & 0x80000000) | (x[1] & 0x7FFFFFFF);
    return x[middle] ^ joined >> 1 ^ ((0 - (x[1] & 1)) & 0x9908B0DF);
  }
  constexpr std::uint32_t output(std::uint32_t y) const {
    y ^= y >> 11;
    y ^= y << 7 & 0x9D2C5680;
    y ^= y << 15 & 0xEFC60000;
    return y ^ y >> 18;
  }
};

} // namespace gpu

template <>
struct engine_kernel<mt19937> {
  using word_type = std::uint32_t;
  static constexpr word_scale scale = word_scale::signed32;
  static constexpr std::uint32_t raw(word_type word) { return word; }

  using recurrence = gpu::mt19937_recurrence;
  static recurrence recurrence_of(const stream_handle&) { return {}; }
  static void load(const stream_handle& stream, std::uint32_t* words);
  static void store(const std::uint32_t* words, const stream_handle& stream);
  static int jump(std::uint32_t* words, std::uint64_t distance);
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

/// Waits, then writes the device state of an engine to a stream: the 624 live words, all of them used.
void mt19937_gpu_state_to_vqs_stream(engine_base_impl<mt19937>& engine, vqs_stream stream);

} // namespace kestro::hvl::rng::detail
