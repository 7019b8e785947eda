// The recurrence in vectors over the block, in place, each new vector tempered while it is in a register.
#include "hvl/engines/mt19937.hpp"
#include "simd/state_block.hpp"
#include "simd/twister.hpp"

namespace hvl::streams::HVL_STREAMS_ISA {
namespace {

const hn::ScalableTag<std::uint32_t> d;
using vec = hn::Vec<decltype(d)>;
constexpr std::size_t lanes = hn::MaxLanes(hn::ScalableTag<std::uint32_t>());
using recurrence = engines::mt19937::recurrence;
using twister = twister_vectors<recurrence>;
constexpr std::size_t n = recurrence::size;
constexpr std::size_t m = recurrence::middle;
static_assert(n == state_words && n % lanes == 0);

// The next block, written over x; tempered to the sink from word `at` on. The first vector is also stored
// behind the block, where the vector that straddles word 227 and the last one read it: the words before a
// vector are new by then.
template <class Sink>
HWY_INLINE void next_block(const twister& t, std::uint32_t* HWY_RESTRICT x, const Sink& sink,
                           std::size_t at) {
  const auto step = [&](std::size_t i, std::size_t middle) __attribute__((always_inline)) {
    const vec y = t.twisted(hn::Load(d, x + i), hn::LoadU(d, x + i + 1), hn::LoadU(d, x + middle));
    hn::Store(y, d, x + i);
    sink(t.tempered(y), at + i);
    return y;
  };
  constexpr std::size_t straddling = (n - m) / lanes * lanes;
  hn::Store(step(0, m), d, x + n);
  for (std::size_t i = lanes; i <= straddling; i += lanes)
    step(i, i + m);
  for (std::size_t i = straddling + lanes; i < n; i += lanes)
    step(i, i + m - n);
}

template <class Sink>
void run_to(const Sink& sink, state_block& w, std::size_t granules) noexcept {
  const twister t((recurrence()));
  w.granules += granules;
  std::size_t at = 0;
  if (w.block_is_next && granules != 0) {
    for (std::size_t i = 0; i < n; i += lanes)
      sink(t.tempered(hn::Load(d, w.words + i)), i);
    w.block_is_next = false;
    --granules;
    at = n;
  }
  for (; granules != 0; --granules, at += n)
    next_block(t, w.words, sink, at);
}

} // namespace

const block_kernel mt19937_blocks = {n,
                                     2 * n,
                                     200,
                                     open_block<vqs_mt19937_record>,
                                     run_words<state_block, word_kind::signed32>,
                                     close_block<vqs_mt19937_record>,
                                     run_values<state_block, word_kind::signed32>,
                                     true};

} // namespace hvl::streams::HVL_STREAMS_ISA
