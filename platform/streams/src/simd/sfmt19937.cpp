// A unit of 128 bits needs the one before: what comes of older units is made in whole vectors, and the units of a vector
// then follow each other in halves and quarters of it.
#include "hvl/engines/sfmt19937.hpp"
#include "simd/state_block.hpp"

namespace hvl::streams::HVL_STREAMS_ISA {
namespace {

using recurrence = engines::sfmt19937::recurrence;
const hn::ScalableTag<std::uint32_t> d;
const hn::Full128<std::uint32_t> d_unit;
using vec = hn::Vec<decltype(d)>;
using unit_vec = hn::Vec<decltype(d_unit)>;
constexpr std::size_t unit = recurrence::unit;
constexpr std::size_t b_words = recurrence::b_units * unit;
constexpr std::size_t n = state_words;
constexpr std::size_t lanes = hn::MaxLanes(hn::ScalableTag<std::uint32_t>());
static_assert(n % lanes == 0);

// The units made last.
struct last_units {
  unit_vec c, d;

  // Adds to what older units give.
  HWY_INLINE unit_vec next(unit_vec older) {
    const hn::Repartition<std::uint8_t, decltype(d_unit)> bytes;
    const unit_vec with_c =
        hn::Xor(older, hn::BitCast(d_unit, hn::ShiftRightBytes<1>(bytes, hn::BitCast(bytes, c))));
    c = d;
    d = hn::Xor(with_c, hn::ShiftLeft<18>(d));
    return d;
  }

  template <class Vec, class Tag = hn::DFromV<Vec>>
  HWY_INLINE Vec next_all(Vec older) {
    if constexpr (hn::MaxLanes(Tag()) == unit) {
      return next(older);
    } else {
      const hn::Half<Tag> half;
      const auto low = next_all(hn::LowerHalf(half, older));
      return hn::Combine(Tag(), next_all(hn::UpperHalf(half, older)), low);
    }
  }
};

// The next block, written over x, and to the sink from word `at` on. The first vector is also stored behind the block, where
// the vector of b that straddles its end reads it.
template <class Sink>
HWY_INLINE void next_block(std::uint32_t* HWY_RESTRICT x, const Sink& sink, std::size_t at) {
  const hn::Repartition<std::uint8_t, decltype(d)> bytes;
  const vec mask = hn::LoadDup128(d, recurrence::mask);
  last_units last{hn::Load(d_unit, x + n - 2 * unit), hn::Load(d_unit, x + n - unit)};
  const auto step = [&](std::size_t i, std::size_t b) __attribute__((always_inline)) {
    const vec a = hn::Load(d, x + i);
    const vec a_shifted = hn::BitCast(d, hn::ShiftLeftBytes<1>(bytes, hn::BitCast(bytes, a)));
    const vec b_masked = hn::And(hn::ShiftRight<11>(hn::LoadU(d, x + b)), mask);
    const vec y = last.next_all(hn::Xor3(a, a_shifted, b_masked));
    hn::Store(y, d, x + i);
    sink(y, at + i);
    return y;
  };
  constexpr std::size_t straddling = (n - b_words - 1) / lanes * lanes;
  hn::Store(step(0, b_words), d, x + n);
  for (std::size_t i = lanes; i <= straddling; i += lanes)
    step(i, i + b_words);
  for (std::size_t i = straddling + lanes; i < n; i += lanes)
    step(i, i + b_words - n);
}

template <class Sink>
void run_to(const Sink& sink, state_block& w, std::size_t granules) noexcept {
  w.granules += granules;
  std::size_t at = 0;
  if (w.block_is_next && granules != 0) {
    for (std::size_t i = 0; i < n; i += lanes)
      sink(hn::Load(d, w.words + i), i);
    w.block_is_next = false;
    --granules;
    at = n;
  }
  for (; granules != 0; --granules, at += n)
    next_block(w.words, sink, at);
}

} // namespace

const block_kernel sfmt19937_blocks = {n,
                                       2 * n,
                                       200,
                                       open_block<vqs_sfmt19937_record>,
                                       run_words<state_block, word_kind::signed32>,
                                       close_block<vqs_sfmt19937_record>,
                                       run_values<state_block, word_kind::signed32>,
                                       true};

} // namespace hvl::streams::HVL_STREAMS_ISA
