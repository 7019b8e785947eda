// Eight (four) blocks to a vector, one counter word of a block in each 64-bit lane: the 32 x 32 multiply
// reads only the low half of a lane, so the products' other halves need no masking until a block is complete.
#include "generators/philox4x32x10.hpp"

#include "simd/isa.hpp"

namespace hvl::streams::HVL_STREAMS_ISA {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

const hn::ScalableTag<std::uint64_t> d64;
const hn::ScalableTag<std::uint32_t> d32;
using vec64 = hn::Vec<decltype(d64)>;

constexpr std::size_t lanes = hn::MaxLanes(hn::ScalableTag<std::uint64_t>());
constexpr std::size_t in_flight = 6;
constexpr std::size_t granule_blocks = lanes * in_flight;

struct workspace {
  philox_counter counter;
  std::uint32_t k0;
  std::uint32_t k1;
};

HWY_INLINE vec64 multiply_low_halves(vec64 a, vec64 b) {
  return hn::MulEven(hn::BitCast(d32, a), hn::BitCast(d32, b));
}

// Words of the low halves of `even` and `odd`, side by side.
HWY_INLINE vec64 interleave_low_halves(vec64 even, vec64 odd) {
  return hn::BitCast(d64, hn::OddEven(hn::BitCast(d32, hn::ShiftLeft<32>(odd)), hn::BitCast(d32, even)));
}

// Writes granule_blocks blocks, in order, for counters low + lane_block and the given high halves.
template <class HighOf>
HWY_INLINE void granule(const workspace& w, vec64 lane_block, HighOf high_of,
                        std::uint32_t* HWY_RESTRICT out) {
  const vec64 m0 = hn::Set(d64, philox_multiplier0);
  const vec64 m1 = hn::Set(d64, philox_multiplier1);
  vec64 x0[in_flight], x1[in_flight], x2[in_flight], x3[in_flight];
#pragma GCC unroll 8
  for (std::size_t v = 0; v < in_flight; ++v) {
    const vec64 low = hn::Add(hn::Set(d64, w.counter.low + v * lanes), lane_block);
    const vec64 high = high_of(low);
    x0[v] = low;
    x1[v] = hn::ShiftRight<32>(low);
    x2[v] = high;
    x3[v] = hn::ShiftRight<32>(high);
  }
  vec64 k0 = hn::Set(d64, w.k0);
  vec64 k1 = hn::Set(d64, w.k1);
#pragma GCC unroll 10
  for (int round = 0; round < philox_rounds; ++round) {
#pragma GCC unroll 8
    for (std::size_t v = 0; v < in_flight; ++v) {
      const vec64 p0 = multiply_low_halves(x0[v], m0);
      const vec64 p1 = multiply_low_halves(x2[v], m1);
      x0[v] = hn::Xor3(hn::ShiftRight<32>(p1), x1[v], k0);
      x2[v] = hn::Xor3(hn::ShiftRight<32>(p0), x3[v], k1);
      x1[v] = p1;
      x3[v] = p0;
    }
    k0 = hn::Add(k0, hn::Set(d64, philox_bump0));
    k1 = hn::Add(k1, hn::Set(d64, philox_bump1));
  }
#pragma GCC unroll 8
  for (std::size_t v = 0; v < in_flight; ++v) {
    const vec64 first = interleave_low_halves(x0[v], x1[v]);
    const vec64 second = interleave_low_halves(x2[v], x3[v]);
    std::uint32_t* const to = out + v * 4 * lanes;
    hn::StoreU(hn::BitCast(d32, hn::InterleaveLower(d64, first, second)), d32, to);
    hn::StoreU(hn::BitCast(d32, hn::InterleaveUpper(d64, first, second)), d32, to + 2 * lanes);
  }
}

// InterleaveLower takes the even lanes of its operands and InterleaveUpper the odd ones; this numbering of a
// vector's blocks makes both come out in order.
HWY_INLINE vec64 lane_blocks() {
  alignas(64) std::uint64_t number[lanes];
  for (std::size_t i = 0; i < lanes; ++i)
    number[i] = i / 2 + (i % 2) * (lanes / 2);
  return hn::Load(d64, number);
}

std::uint32_t open(const void* record, void* workspace_memory) noexcept {
  const auto& r = *static_cast<const vqs_philox4x32x10_record*>(record);
  auto& w = *static_cast<workspace*>(workspace_memory);
  w.k0 = r.k0;
  w.k1 = r.k1;
  w.counter = philox_counter_of(r);
  if (r.remaining == 0)
    return 0;
  w.counter = w.counter - 1;
  return 4 - r.remaining;
}

void run(void* workspace_memory, void* words, std::size_t granules) noexcept {
  workspace w = *static_cast<workspace*>(workspace_memory);
  auto* out = static_cast<std::uint32_t*>(words);
  const vec64 lane_block = lane_blocks();
  for (; granules != 0; --granules, out += 4 * granule_blocks) {
    const vec64 base = hn::Set(d64, w.counter.low);
    const vec64 high = hn::Set(d64, w.counter.high);
    if (w.counter.low <= ~std::uint64_t{0} - granule_blocks) [[likely]]
      granule(
          w, lane_block, [&](vec64) { return high; }, out);
    else
      granule(
          w, lane_block,
          [&](vec64 low) {
            return hn::Add(high, hn::IfThenElseZero(hn::Lt(low, base), hn::Set(d64, std::uint64_t{1})));
          },
          out);
    w.counter = w.counter + granule_blocks;
  }
  *static_cast<workspace*>(workspace_memory) = w;
}

} // namespace

const block_kernel philox4x32x10_blocks = {
    4 * granule_blocks,
    4 * granule_blocks*(1536 / (4 * granule_blocks)),
    4 * granule_blocks,
    open,
    run,
    nullptr,
};

} // namespace hvl::streams::HVL_STREAMS_ISA
