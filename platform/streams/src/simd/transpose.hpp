// Transposition of square tiles of 32-bit words, a vector to a row.
#pragma once

#include "simd/isa.hpp"

namespace hvl::streams::HVL_STREAMS_ISA {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

// Row i of the tile starts at in + i * in_stride (aligned); its column i goes to sink(column, at + i * stride).
template <class Sink>
HWY_INLINE void transpose_tile(const std::uint32_t* in, std::size_t in_stride, const Sink& sink,
                               std::size_t at, std::size_t stride) {
  const hn::ScalableTag<std::uint32_t> d;
  const hn::ScalableTag<std::uint64_t> d64;
  using vec = hn::Vec<decltype(d)>;
  constexpr std::size_t size = hn::MaxLanes(hn::ScalableTag<std::uint32_t>());
  constexpr std::size_t groups = size / 4;

  // Block b of part[g][j] becomes column 4 b + j of rows 4 g .. 4 g + 3.
  vec part[groups][4];
#pragma GCC unroll 4
  for (std::size_t g = 0; g < groups; ++g) {
    const std::uint32_t* const row = in + 4 * g * in_stride;
    const vec a = hn::Load(d, row);
    const vec b = hn::Load(d, row + in_stride);
    const vec c = hn::Load(d, row + 2 * in_stride);
    const vec e = hn::Load(d, row + 3 * in_stride);
    const auto ab_low = hn::BitCast(d64, hn::InterleaveLower(d, a, b));
    const auto ab_high = hn::BitCast(d64, hn::InterleaveUpper(d, a, b));
    const auto ce_low = hn::BitCast(d64, hn::InterleaveLower(d, c, e));
    const auto ce_high = hn::BitCast(d64, hn::InterleaveUpper(d, c, e));
    part[g][0] = hn::BitCast(d, hn::InterleaveLower(d64, ab_low, ce_low));
    part[g][1] = hn::BitCast(d, hn::InterleaveUpper(d64, ab_low, ce_low));
    part[g][2] = hn::BitCast(d, hn::InterleaveLower(d64, ab_high, ce_high));
    part[g][3] = hn::BitCast(d, hn::InterleaveUpper(d64, ab_high, ce_high));
  }
#pragma GCC unroll 4
  for (std::size_t j = 0; j < 4; ++j) {
    const auto store = [&](std::size_t block, auto raw) __attribute__((always_inline)) {
      sink(vec{raw}, at + (4 * block + j) * stride);
    };
#if HWY_TARGET <= HWY_AVX3
    const auto low01 = _mm512_shuffle_i32x4(part[0][j].raw, part[1][j].raw, 0x44);
    const auto high01 = _mm512_shuffle_i32x4(part[0][j].raw, part[1][j].raw, 0xEE);
    const auto low23 = _mm512_shuffle_i32x4(part[2][j].raw, part[3][j].raw, 0x44);
    const auto high23 = _mm512_shuffle_i32x4(part[2][j].raw, part[3][j].raw, 0xEE);
    store(0, _mm512_shuffle_i32x4(low01, low23, 0x88));
    store(1, _mm512_shuffle_i32x4(low01, low23, 0xDD));
    store(2, _mm512_shuffle_i32x4(high01, high23, 0x88));
    store(3, _mm512_shuffle_i32x4(high01, high23, 0xDD));
#else
    store(0, _mm256_permute2x128_si256(part[0][j].raw, part[1][j].raw, 0x20));
    store(1, _mm256_permute2x128_si256(part[0][j].raw, part[1][j].raw, 0x31));
#endif
  }
}

} // namespace
} // namespace hvl::streams::HVL_STREAMS_ISA
