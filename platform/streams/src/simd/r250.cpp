// The squared recurrence, x(n) = x(n - 206) xor x(n - 500), in vectors over a ring of the last 512 words, in place: words
// are in memory long before they are read again.
#include <cstring>

#include "hvl/engines/r250.hpp"
#include "simd/value_sink.hpp"

namespace hvl::streams::HVL_STREAMS_ISA {
namespace {

const hn::ScalableTag<std::uint32_t> d;
using vec = hn::Vec<decltype(d)>;
constexpr std::size_t lanes = hn::MaxLanes(hn::ScalableTag<std::uint32_t>());
constexpr std::size_t n = engines::r250::recurrence::size;
constexpr std::size_t lag = engines::r250::recurrence::lag;
constexpr std::size_t granule = 512;
static_assert(granule >= 2 * n && granule % lanes == 0);

// Makes the words [begin, end) of the sequence from the 250 behind them.
void wind_back(std::uint32_t* words, std::size_t begin, std::size_t end) {
  for (std::size_t k = end; k-- > begin;)
    words[k] = words[k + n] ^ words[k + n - lag];
}

struct workspace {
  alignas(vector_alignment) std::uint32_t words[granule + 16]; // behind the ring: its first words once more
  std::uint64_t granules;                                      // granules run
  std::uint32_t position;                                      // of the record
};

std::uint32_t open(const void* record, void* workspace_memory) noexcept {
  const auto& r = *static_cast<const vqs_r250_record*>(record);
  auto& w = *static_cast<workspace*>(workspace_memory);
  const std::size_t newer = r.position; // words before it in the record
  std::memcpy(w.words + granule - n, r.words + newer, (n - newer) * sizeof(std::uint32_t));
  std::memcpy(w.words + granule - newer, r.words, newer * sizeof(std::uint32_t));
  wind_back(w.words, 0, granule - n);
  w.granules = 0;
  w.position = r.position;
  return 0;
}

// The first words are also stored behind the ring, where vectors that straddle its end read them: 206 places back, and up to
// 12 words ahead, which is 500 places back.
template <class Sink>
HWY_INLINE void run_to(const Sink& sink, workspace& w, std::size_t granules) noexcept {
  std::uint32_t* HWY_RESTRICT const x = w.words;
  w.granules += granules;
  for (std::size_t at = 0; granules != 0; --granules, at += granule) {
    const auto step = [&](std::size_t i, std::size_t lagging) __attribute__((always_inline)) {
      const vec y = hn::Xor(hn::LoadU(d, x + i + granule - 2 * n), hn::LoadU(d, x + lagging));
      hn::Store(y, d, x + i);
      sink(y, at + i);
      return y;
    };
    constexpr std::size_t straddling = 2 * lag / lanes * lanes;
    for (std::size_t i = 0; i < 16; i += lanes)
      hn::Store(step(i, i + granule - 2 * lag), d, x + granule + i);
    for (std::size_t i = 16; i <= straddling; i += lanes)
      step(i, i + granule - 2 * lag);
    for (std::size_t i = straddling + lanes; i < granule; i += lanes)
      step(i, i - 2 * lag);
  }
}

// Words of the last granule that were not taken are wound back.
void close(const void* workspace_memory, void* record, std::uint64_t words_taken) noexcept {
  const auto& w = *static_cast<const workspace*>(workspace_memory);
  auto& r = *static_cast<vqs_r250_record*>(record);
  std::uint32_t sequence[2 * granule];
  std::memcpy(sequence + granule, w.words, granule * sizeof(std::uint32_t));
  const std::size_t end = granule + static_cast<std::size_t>(words_taken - (w.granules - 1) * granule);
  const std::size_t begin = end - n;
  wind_back(sequence, begin, granule);
  r.position = static_cast<std::uint32_t>((w.position + words_taken) % n);
  const std::size_t newer = r.position;
  std::memcpy(r.words + newer, sequence + begin, (n - newer) * sizeof(std::uint32_t));
  std::memcpy(r.words, sequence + end - newer, newer * sizeof(std::uint32_t));
}

static_assert(sizeof(workspace) <= workspace_bytes);

} // namespace

const block_kernel r250_blocks = {granule,
                                  3 * granule,
                                  granule,
                                  open,
                                  run_words<workspace, word_kind::signed32>,
                                  close,
                                  run_values<workspace, word_kind::signed32>,
                                  true};

} // namespace hvl::streams::HVL_STREAMS_ISA
