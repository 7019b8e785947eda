// The recurrence in vectors over a row of words, behind the last 69. The middle words lie only 35 places back, in vectors that
// are on their way to memory: they are taken from registers.
#include "hvl/engines/mt2203.hpp"

#include <cstring>

#include "simd/twister.hpp"

namespace hvl::streams::HVL_STREAMS_ISA {
namespace {

using recurrence = engines::mt2203::recurrence;
const hn::ScalableTag<std::uint32_t> d;
using vec = hn::Vec<decltype(d)>;
constexpr std::size_t lanes = hn::MaxLanes(hn::ScalableTag<std::uint32_t>());
constexpr std::size_t n = recurrence::size;
constexpr std::size_t m = recurrence::middle;
constexpr std::size_t granule = 512;
constexpr std::size_t front = 80; // whole vectors that hold the last n words
static_assert(lanes <= n - m && front >= n && front % lanes == 0 && granule % lanes == 0);

// Where in the vectors behind them the words `back` places back begin.
struct place {
  std::size_t vectors; // back to the first
  int lane;
};
constexpr place place_of(std::size_t back) {
  const std::size_t vectors = (back + lanes - 1) / lanes;
  return {vectors, static_cast<int>(vectors * lanes - back)};
}
constexpr place middle = place_of(n - m);
static_assert(middle.lane != 0);

// Of two vectors in a row, those from a lane of the first on.
template <int first_lane>
HWY_INLINE vec straddling(vec low, vec high) {
#if HWY_TARGET <= HWY_AVX3
  return vec{_mm512_alignr_epi32(high.raw, low.raw, first_lane)};
#else
  const __m256i between = _mm256_permute2x128_si256(low.raw, high.raw, 0x21);
  if constexpr (first_lane < 4)
    return vec{_mm256_alignr_epi8(between, low.raw, 4 * first_lane)};
  else
    return vec{_mm256_alignr_epi8(high.raw, between, 4 * (first_lane - 4))};
#endif
}

// The words so many places behind a vector in memory.
template <std::size_t back>
HWY_INLINE vec stored(const std::uint32_t* here) {
#if HWY_TARGET <= HWY_AVX3 // where a vector fills a line, and one that begins in mid-line costs two
  constexpr place there = place_of(back);
  const std::uint32_t* const from = here - there.vectors * lanes;
  return straddling<there.lane>(hn::Load(d, from), hn::Load(d, from + lanes));
#else
  return hn::LoadU(d, here - back);
#endif
}

struct workspace {
  alignas(vector_alignment) std::uint32_t words[front + granule]; // of the last granule, and before it
  recurrence parameters;
  std::uint64_t granules; // granules run
  std::uint32_t position; // of the record
};
static_assert(sizeof(workspace) <= workspace_bytes);

std::uint32_t open(const void* record, void* workspace_memory) noexcept {
  const auto& r = *static_cast<const vqs_mt2203_record*>(record);
  auto& w = *static_cast<workspace*>(workspace_memory);
  w.parameters = engines::mt2203::recurrence_of(r);
  w.granules = 0;
  w.position = r.position;
  // the words before the position
  std::uint32_t* const last = w.words + front + granule - n;
  std::memcpy(last, r.words, sizeof r.words);
  if (r.position != n) {
    w.parameters.shift(r.words, r.position, last);
    w.parameters.unwind(last);
  }
  return 0;
}

template <class Sink>
HWY_INLINE void run_to(const Sink& sink, workspace& w, std::size_t granules) noexcept {
  const twister_vectors<recurrence> twister(w.parameters);
  w.granules += granules;
  for (std::size_t at = 0; granules != 0; --granules, at += granule) {
    for (std::size_t i = 0; i < front; i += lanes)
      hn::Store(hn::Load(d, w.words + granule + i), d, w.words + i);
    vec last[middle.vectors];
    for (std::size_t k = 0; k < middle.vectors; ++k)
      last[k] = hn::Load(d, w.words + front - (middle.vectors - k) * lanes);
    for (std::size_t i = 0; i < granule; i += lanes) {
      std::uint32_t* const here = w.words + front + i;
      const vec y =
          twister.twisted(stored<n>(here), stored<n - 1>(here), straddling<middle.lane>(last[0], last[1]));
      hn::Store(y, d, here);
      sink(twister.tempered(y), at + i);
#pragma GCC unroll 8
      for (std::size_t k = 1; k < middle.vectors; ++k)
        last[k - 1] = last[k];
      last[middle.vectors - 1] = y;
    }
  }
}

// The record gets the block of the last word taken. Its words that no granule has made yet are made here.
void close(const void* workspace_memory, void* record, std::uint64_t words_taken) noexcept {
  const auto& w = *static_cast<const workspace*>(workspace_memory);
  auto& r = *static_cast<vqs_mt2203_record*>(record);
  r.position = static_cast<std::uint32_t>((w.position + words_taken - 1) % n + 1);
  std::uint32_t sequence[front + granule + n];
  std::memcpy(sequence, w.words, sizeof w.words);
  for (std::size_t k = front + granule; k < std::size(sequence); ++k)
    sequence[k] = w.parameters.next(sequence + k - n);
  const std::size_t end = front + static_cast<std::size_t>(words_taken - (w.granules - 1) * granule);
  std::memcpy(r.words, sequence + end - r.position, sizeof r.words);
}

} // namespace

const block_kernel mt2203_blocks = {granule,
                                    3 * granule,
                                    granule,
                                    open,
                                    run_words<workspace, word_kind::signed32>,
                                    close,
                                    run_values<workspace, word_kind::signed32>,
                                    true};

} // namespace hvl::streams::HVL_STREAMS_ISA
