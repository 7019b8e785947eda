// The constants and the 128-bit counter of philox4x32x10, for its scalar and its SIMD form.
#pragma once

#include <cstdint>

#include "hvl/streams_record.h"

namespace hvl::streams {

inline constexpr int philox_rounds = 10;
inline constexpr std::uint32_t philox_multiplier0 = 0xD2511F53;
inline constexpr std::uint32_t philox_multiplier1 = 0xCD9E8D57;
inline constexpr std::uint32_t philox_bump0 = 0x9E3779B9;
inline constexpr std::uint32_t philox_bump1 = 0xBB67AE85;

struct philox_counter {
  std::uint64_t low;
  std::uint64_t high;
};

// Modulo 2^128.
static constexpr philox_counter operator+(philox_counter counter, philox_counter blocks) {
  const std::uint64_t low = counter.low + blocks.low;
  return {low, counter.high + blocks.high + static_cast<std::uint64_t>(low < blocks.low)};
}
static constexpr philox_counter operator+(philox_counter counter, std::uint64_t blocks) {
  return counter + philox_counter{blocks, 0};
}
static constexpr philox_counter operator-(philox_counter counter, std::uint64_t blocks) {
  return {counter.low - blocks, counter.high - static_cast<std::uint64_t>(counter.low < blocks)};
}

static constexpr philox_counter philox_counter_of(const vqs_philox4x32x10_record& r) {
  return {std::uint64_t{r.c1} << 32 | r.c0, std::uint64_t{r.c3} << 32 | r.c2};
}

} // namespace hvl::streams
