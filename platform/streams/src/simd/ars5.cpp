// The rounds are the processor's AES instructions: with AVX-512 on vectors of four blocks, with AVX2 on single blocks.
#include <cpuid.h>

#include "simd/value_sink.hpp"

namespace hvl::streams::HVL_STREAMS_ISA {
namespace {

using engines::ars5;
using cipher = engines::ars5_cipher;

#if HWY_TARGET <= HWY_AVX3
const hn::ScalableTag<std::uint64_t> d;
#else
const hn::Full128<std::uint64_t> d;
#endif
using vec = hn::Vec<decltype(d)>;

constexpr std::size_t blocks_per_vector = hn::MaxLanes(decltype(d)()) / 2;
constexpr std::size_t in_flight = 8;
constexpr std::size_t granule_blocks = blocks_per_vector * in_flight;

struct workspace {
  engines::counter128 counter;
  cipher::round_key keys[cipher::rounds + 1];
};

// Both halves of every block.
HWY_INLINE vec broadcast(std::uint64_t low, std::uint64_t high) {
  return hn::OddEven(hn::Set(d, high), hn::Set(d, low));
}

HWY_INLINE vec round(vec x, vec key) {
#if HWY_TARGET <= HWY_AVX3
  return vec{_mm512_aesenc_epi128(x.raw, key.raw)};
#else
  return vec{_mm_aesenc_si128(x.raw, key.raw)};
#endif
}

HWY_INLINE vec last_round(vec x, vec key) {
#if HWY_TARGET <= HWY_AVX3
  return vec{_mm512_aesenclast_epi128(x.raw, key.raw)};
#else
  return vec{_mm_aesenclast_si128(x.raw, key.raw)};
#endif
}

// The counters of a granule, in the general case.
void load_counters(vec (&x)[in_flight], engines::counter128 counter) {
  for (vec& v : x) {
    alignas(vector_alignment) std::uint64_t halves[2 * blocks_per_vector];
    for (std::size_t block = 0; block < blocks_per_vector; ++block) {
      halves[2 * block] = counter.low;
      halves[2 * block + 1] = counter.high;
      counter = counter + 1;
    }
    v = hn::Load(d, halves);
  }
}

template <class Sink>
HWY_INLINE void put(const vec (&x)[in_flight], const Sink& sink, std::size_t at) {
  const hn::ScalableTag<std::uint32_t> d32;
#if HWY_TARGET <= HWY_AVX3
#pragma GCC unroll 8
  for (std::size_t v = 0; v < in_flight; ++v)
    sink(hn::BitCast(d32, x[v]), at + v * hn::MaxLanes(d32));
#else
  const hn::ScalableTag<std::uint64_t> d64;
#pragma GCC unroll 8
  for (std::size_t v = 0; v < in_flight; v += 2)
    sink(hn::BitCast(d32, hn::Combine(d64, x[v + 1], x[v])), at + v / 2 * hn::MaxLanes(d32));
#endif
}

std::uint32_t open(const void* record, void* workspace_memory) noexcept {
  const ars5::state s = ars5::state_of(*static_cast<const vqs_ars5_record*>(record));
  auto& w = *static_cast<workspace*>(workspace_memory);
  for (int round = 0; round <= cipher::rounds; ++round)
    w.keys[round] = cipher::key_of(s.key, round);
  w.counter = s.next_block();
  if (s.remaining == 0)
    return 0;
  w.counter = w.counter - 1;
  return 4 - s.remaining;
}

template <class Sink>
void run_to(const Sink& sink, workspace& w, std::size_t granules) noexcept {
  vec keys[cipher::rounds + 1];
#pragma GCC unroll 8
  for (int round = 0; round <= cipher::rounds; ++round)
    keys[round] = broadcast(w.keys[round].low, w.keys[round].high);
  alignas(vector_alignment) std::uint64_t number[2 * blocks_per_vector] = {};
  for (std::size_t block = 0; block < blocks_per_vector; ++block)
    number[2 * block] = block;
  const vec block_number = hn::Load(d, number);
  const vec next_vector = broadcast(blocks_per_vector, 0);

  engines::counter128 counter = w.counter;
  for (std::size_t at = 0; granules != 0; --granules, at += 4 * granule_blocks) {
    vec x[in_flight];
    if (counter.low <= ~std::uint64_t{0} - granule_blocks) [[likely]] {
      x[0] = hn::Add(broadcast(counter.low, counter.high), block_number);
#pragma GCC unroll 8
      for (std::size_t v = 1; v < in_flight; ++v)
        x[v] = hn::Add(x[v - 1], next_vector);
    } else {
      load_counters(x, counter);
    }
#pragma GCC unroll 8
    for (std::size_t v = 0; v < in_flight; ++v)
      x[v] = hn::Xor(x[v], keys[0]);
#pragma GCC unroll 8
    for (int r = 1; r < cipher::rounds; ++r)
#pragma GCC unroll 8
      for (std::size_t v = 0; v < in_flight; ++v)
        x[v] = round(x[v], keys[r]);
#pragma GCC unroll 8
    for (std::size_t v = 0; v < in_flight; ++v)
      x[v] = last_round(x[v], keys[cipher::rounds]);
    put(x, sink, at);
    counter = counter + granule_blocks;
  }
  w.counter = counter;
}

bool is_supported() noexcept {
#if HWY_TARGET <= HWY_AVX3
  static const bool supported = [] { // clang has no name for this feature
    unsigned eax, ebx, ecx, edx;
    return __get_cpuid_count(7, 0, &eax, &ebx, &ecx, &edx) != 0 && (ecx & bit_VAES) != 0;
  }();
  return supported;
#else
  return __builtin_cpu_supports("aes") != 0;
#endif
}

static_assert(sizeof(workspace) <= workspace_bytes);

} // namespace

const block_kernel ars5_blocks = {
    4 * granule_blocks,
    4 * granule_blocks*(1536 / (4 * granule_blocks)),
    4 * granule_blocks,
    open,
    run_words<workspace, word_kind::signed32>,
    nullptr,
    run_values<workspace, word_kind::signed32>,
    true,
    is_supported,
};

} // namespace hvl::streams::HVL_STREAMS_ISA
