// Lane i of the vectors in flight holds the components at position i; a step multiplies all of them by the power of the
// multiplier that carries each to the next granule. So outputs leave in order.
#include "simd/value_sink.hpp"

namespace hvl::streams::HVL_STREAMS_ISA {
namespace {

using generator = engines::wichmann_hill;

const hn::ScalableTag<std::uint32_t> d32;
const hn::ScalableTag<std::uint64_t> d64;
using vec32 = hn::Vec<decltype(d32)>;
using vec64 = hn::Vec<decltype(d64)>;

constexpr std::size_t in_flight = 2;
constexpr std::size_t lanes = hn::MaxLanes(hn::ScalableTag<std::uint32_t>());
constexpr std::size_t granule = in_flight * lanes;

struct workspace {
  std::uint32_t position[4][granule]; // the next granule, of each component
  generator::multiplication step[4];  // carries a position to the next granule
};
static_assert(sizeof(workspace) <= workspace_bytes);

// Products of even lanes by 32 bits, and lanes as they stand one place lower.
HWY_INLINE vec64 even_product(vec32 x, vec32 factor) {
  return hn::MulEven(x, factor);
}
HWY_INLINE vec32 odd_to_even(vec32 x) {
  return hn::BitCast(d32, hn::ShiftRight<32>(hn::BitCast(d64, x)));
}
// The upper halves of the products of even and of odd lanes, in place.
HWY_INLINE vec32 upper_halves(vec64 even, vec64 odd) {
  return hn::OddEven(hn::BitCast(d32, odd), hn::BitCast(d32, hn::ShiftRight<32>(even)));
}

// One component: products by one factor as the generator makes them, and the fractions x / m.
class component {
 public:
  HWY_INLINE explicit component(const generator::multiplication& by)
      : factor_(hn::Set(d32, by.factor)), quotient_(hn::Set(d32, by.quotient)),
        modulus_(hn::Set(d32, by.m.value)),
        scale_(hn::Set(d32, static_cast<std::uint32_t>(by.m.scale() - (std::uint64_t{1} << 40)))) {}

  HWY_INLINE vec32 product(vec32 x, vec32 odd) const {
    const vec32 times = upper_halves(even_product(x, quotient_), even_product(odd, quotient_));
    const vec32 r = hn::Sub(hn::Mul(x, factor_), hn::Mul(times, modulus_));
    return hn::Min(r, hn::Sub(r, modulus_));
  }
  // The fraction in 64 bits, without x 2^40.
  HWY_INLINE vec64 fraction(vec32 x) const { return even_product(x, scale_); }

 private:
  vec32 factor_, quotient_, modulus_;
  vec32 scale_; // 2^64 / m - 2^40, which is below 2^32
};

std::uint32_t open(const void* record, void* workspace_memory) noexcept {
  const generator::state s = generator::state_of(*static_cast<const generator::record*>(record));
  auto& w = *static_cast<workspace*>(workspace_memory);
  for (std::size_t c = 0; c < 4; ++c) {
    // doubling: the first 1, 2, 4, ... positions give as many more
    std::uint32_t(&position)[granule] = w.position[c];
    position[0] = s.x[c];
    w.step[c] = s.by[c];
    for (std::size_t known = 1; known < granule; known *= 2) {
      for (std::size_t i = 0; i < known; ++i)
        position[known + i] = w.step[c](position[i]);
      w.step[c] = {w.step[c].m, w.step[c](w.step[c].factor)};
    }
  }
  return 0;
}

template <class Sink>
HWY_INLINE void run_to(const Sink& sink, workspace& w, std::size_t granules) noexcept {
  const component components[4] = {component(w.step[0]), component(w.step[1]), component(w.step[2]),
                                   component(w.step[3])};
  vec32 x[4][in_flight];
#pragma GCC unroll 4
  for (std::size_t c = 0; c < 4; ++c)
#pragma GCC unroll 4
    for (std::size_t v = 0; v < in_flight; ++v)
      x[c][v] = hn::LoadU(d32, w.position[c] + v * lanes);
  for (std::size_t at = 0; granules != 0; --granules, at += granule) {
#pragma GCC unroll 4
    for (std::size_t v = 0; v < in_flight; ++v) {
      vec32 whole = hn::Zero(d32); // the sum of x, which counts in 2^40
      vec64 even = hn::Zero(d64), odd = hn::Zero(d64);
#pragma GCC unroll 4
      for (std::size_t c = 0; c < 4; ++c) {
        const vec32 odd_x = odd_to_even(x[c][v]);
        whole = hn::Add(whole, x[c][v]);
        even = hn::Add(even, components[c].fraction(x[c][v]));
        odd = hn::Add(odd, components[c].fraction(odd_x));
        x[c][v] = components[c].product(x[c][v], odd_x);
      }
      // both shifts leave the low 24 bits of a lane, at the top
      even = hn::Add(even, hn::ShiftLeft<40>(hn::BitCast(d64, whole)));
      odd = hn::Add(odd, hn::ShiftLeft<40>(hn::BitCast(d64, odd_to_even(whole))));
      sink(upper_halves(even, odd), at + v * lanes);
    }
  }
#pragma GCC unroll 4
  for (std::size_t c = 0; c < 4; ++c)
#pragma GCC unroll 4
    for (std::size_t v = 0; v < in_flight; ++v)
      hn::StoreU(x[c][v], d32, w.position[c] + v * lanes);
}

} // namespace

const block_kernel wichmann_hill_blocks = {
    granule,
    1536 / granule* granule,
    granule,
    open,
    run_words<workspace, word_kind::signed32>,
    nullptr,
    run_values<workspace, word_kind::signed32>,
    true,
};

} // namespace hvl::streams::HVL_STREAMS_ISA
