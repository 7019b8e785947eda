// Eight (four) blocks to a vector, one counter word of a block in each 64-bit lane: the 32 x 32 multiply
// reads only the low half of a lane, so the products' other halves need no masking until a block is complete.
#include "simd/value_sink.hpp"

namespace hvl::streams::HVL_STREAMS_ISA {
namespace {

const hn::ScalableTag<std::uint64_t> d64;
const hn::ScalableTag<std::uint32_t> d32;
using vec64 = hn::Vec<decltype(d64)>;
using vec32 = hn::Vec<decltype(d32)>;

constexpr std::size_t lanes = hn::MaxLanes(hn::ScalableTag<std::uint64_t>());
constexpr std::size_t in_flight = 6;
constexpr std::size_t granule_blocks = lanes * in_flight;

struct workspace {
  engines::counter128 counter;
  std::uint32_t k0;
  std::uint32_t k1;
};

HWY_INLINE vec64 multiply_low_halves(vec64 a, vec64 b) {
  return hn::MulEven(hn::BitCast(d32, a), hn::BitCast(d32, b));
}

// The two words that the last round makes of a product, side by side: with its halves exchanged the odd word already
// stands where it belongs.
HWY_INLINE vec64 last_words(vec64 product, vec64 x_odd, vec32 key) {
  const vec32 exchanged = hn::Shuffle2301(hn::BitCast(d32, product));
  const vec32 x = hn::BitCast(d32, x_odd);
#if HWY_TARGET <= HWY_AVX3
  const vec32 both{_mm512_mask_ternarylogic_epi32(exchanged.raw, 0x5555, x.raw, key.raw, 0x96)};
#else
  const vec32 both = hn::OddEven(exchanged, hn::Xor3(exchanged, x, key));
#endif
  return hn::BitCast(d64, both);
}

// The words of blocks, in the low halves of lanes; the other halves hold anything.
struct blocks_in_flight {
  vec64 x0[in_flight], x1[in_flight], x2[in_flight], x3[in_flight];
};

// The rounds from First on, whose keys are k0 and k1, and the words put out in order from word `at` on.
template <int First, class Sink>
HWY_INLINE void remaining_rounds(blocks_in_flight& x, std::uint32_t k0, std::uint32_t k1, const Sink& sink,
                                 std::size_t at) {
  const vec64 m0 = hn::Set(d64, math::philox_multiplier0);
  const vec64 m1 = hn::Set(d64, math::philox_multiplier1);
#pragma GCC unroll 10
  for (int round = First; round < math::philox_rounds - 1; ++round) {
    const vec64 key0 = hn::Set(d64, k0);
    const vec64 key1 = hn::Set(d64, k1);
#pragma GCC unroll 8
    for (std::size_t v = 0; v < in_flight; ++v) {
      const vec64 p0 = multiply_low_halves(x.x0[v], m0);
      const vec64 p1 = multiply_low_halves(x.x2[v], m1);
      x.x0[v] = hn::Xor3(hn::ShiftRight<32>(p1), x.x1[v], key0);
      x.x2[v] = hn::Xor3(hn::ShiftRight<32>(p0), x.x3[v], key1);
      x.x1[v] = p1;
      x.x3[v] = p0;
    }
    k0 += math::philox_bump0;
    k1 += math::philox_bump1;
  }
  const vec32 key0 = hn::Set(d32, k0);
  const vec32 key1 = hn::Set(d32, k1);
#pragma GCC unroll 8
  for (std::size_t v = 0; v < in_flight; ++v) {
    const vec64 first = last_words(multiply_low_halves(x.x2[v], m1), x.x1[v], key0);
    const vec64 second = last_words(multiply_low_halves(x.x0[v], m0), x.x3[v], key1);
    sink(hn::BitCast(d32, hn::InterleaveLower(d64, first, second)), at + v * 4 * lanes);
    sink(hn::BitCast(d32, hn::InterleaveUpper(d64, first, second)), at + v * 4 * lanes + 2 * lanes);
  }
}

// Puts out granule_blocks blocks from the workspace's counter on.
template <class Sink>
HWY_INLINE void granule(const workspace& w, vec64 lane_block, const Sink& sink, std::size_t at) {
  blocks_in_flight x;
  const vec64 base = hn::Set(d64, w.counter.low);
  const vec64 high_base = hn::Set(d64, w.counter.high);
#pragma GCC unroll 8
  for (std::size_t v = 0; v < in_flight; ++v) {
    const vec64 low = hn::Add(hn::Set(d64, w.counter.low + v * lanes), lane_block);
    const vec64 high =
        hn::Add(high_base, hn::IfThenElseZero(hn::Lt(low, base), hn::Set(d64, std::uint64_t{1})));
    x.x0[v] = low;
    x.x1[v] = hn::ShiftRight<32>(low);
    x.x2[v] = high;
    x.x3[v] = hn::ShiftRight<32>(high);
  }
  remaining_rounds<0>(x, w.k0, w.k1, sink, at);
}

// The same where all counters differ in their lowest words only: half of the first two rounds is then the same for
// every block, and made once.
template <class Sink>
HWY_INLINE void granule_of_lowest_words(const workspace& w, vec64 lane_block, const Sink& sink,
                                        std::size_t at) {
  const vec64 m0 = hn::Set(d64, math::philox_multiplier0);
  const vec64 m1 = hn::Set(d64, math::philox_multiplier1);
  const auto upper = [](std::uint64_t product) { return static_cast<std::uint32_t>(product >> 32); };
  const auto lower = [](std::uint64_t product) { return static_cast<std::uint32_t>(product); };
  std::uint32_t k0 = w.k0, k1 = w.k1;
  const std::uint64_t first_p1 = std::uint64_t{math::philox_multiplier1} * lower(w.counter.high);
  const std::uint32_t x0 = upper(first_p1) ^ upper(w.counter.low) ^ k0;
  const vec64 mixed_into_x2 = hn::Set(d64, upper(w.counter.high) ^ k1);
  k0 += math::philox_bump0;
  k1 += math::philox_bump1;
  const std::uint64_t second_p0 = std::uint64_t{math::philox_multiplier0} * x0;
  const vec64 mixed_into_x0 = hn::Set(d64, lower(first_p1) ^ k0);
  const vec64 mixed_into_x3 = hn::Set(d64, upper(second_p0) ^ k1);
  const std::uint64_t product = std::uint64_t{math::philox_multiplier0} * lower(w.counter.low);
  const vec64 lane_product = multiply_low_halves(lane_block, m0);
  blocks_in_flight x;
#pragma GCC unroll 8
  for (std::size_t v = 0; v < in_flight; ++v) {
    const vec64 p0 = hn::Add(hn::Set(d64, product + v * lanes * math::philox_multiplier0), lane_product);
    const vec64 p1 = multiply_low_halves(hn::Xor(hn::ShiftRight<32>(p0), mixed_into_x2), m1);
    x.x0[v] = hn::Xor(hn::ShiftRight<32>(p1), mixed_into_x0);
    x.x1[v] = p1;
    x.x2[v] = hn::Xor(p0, mixed_into_x3);
    x.x3[v] = hn::Set(d64, second_p0);
  }
  remaining_rounds<2>(x, k0 + math::philox_bump0, k1 + math::philox_bump1, sink, at);
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
  w.counter = engines::philox4x32x10::state_of(r).next_block();
  if (r.remaining == 0)
    return 0;
  w.counter = w.counter - 1;
  return 4 - r.remaining;
}

template <class Sink>
void run_to(const Sink& sink, workspace& state, std::size_t granules) noexcept {
  workspace w = state;
  const vec64 lane_block = lane_blocks();
  for (std::size_t at = 0; granules != 0; --granules, at += 4 * granule_blocks) {
    if (static_cast<std::uint32_t>(w.counter.low) <= ~std::uint32_t{0} - granule_blocks) [[likely]]
      granule_of_lowest_words(w, lane_block, sink, at);
    else
      granule(w, lane_block, sink, at);
    w.counter = w.counter + granule_blocks;
  }
  state = w;
}

} // namespace

const block_kernel philox4x32x10_blocks = {
    4 * granule_blocks,
    4 * granule_blocks*(1536 / (4 * granule_blocks)),
    4 * granule_blocks,
    open,
    run_words<workspace, word_kind::signed32>,
    nullptr,
    run_values<workspace, word_kind::signed32>,
    true,
};

} // namespace hvl::streams::HVL_STREAMS_ISA
