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
  std::uint32_t step[4];              // carries a position to the next granule
  generator::modulus m[4];
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

// One component: products by one factor, and the fractions x / m.
class component {
 public:
  HWY_INLINE component(generator::modulus m, std::uint32_t factor)
      : factor_(hn::Set(d32, factor)),
        quotient_(hn::Set(d32, static_cast<std::uint32_t>((std::uint64_t{factor} << 32) / m.value))),
        modulus_(hn::Set(d32, m.value)),
        scale_(hn::Set(d32, static_cast<std::uint32_t>(m.scale() - (std::uint64_t{1} << 40)))) {}

  // factor * x - m * (quotient * x / 2^32) is below 2 m: the quotient, factor * 2^32 / m rounded down, makes the whole
  // multiple of m too small by one at most.
  HWY_INLINE vec32 product(vec32 x, vec32 odd) const {
    const vec32 times = upper_halves(even_product(x, quotient_), even_product(odd, quotient_));
    const vec32 r = hn::Sub(hn::Mul(x, factor_), hn::Mul(times, modulus_));
    return hn::Min(r, hn::Sub(r, modulus_)); // a value below the modulus wraps to something greater
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
    std::uint32_t power = s.a[c];
    for (std::size_t known = 1; known < granule; known *= 2) {
      for (std::size_t i = 0; i < known; ++i)
        position[known + i] = s.m[c].product(position[i], power);
      power = s.m[c].product(power, power);
    }
    w.step[c] = power;
    w.m[c] = s.m[c];
  }
  return 0;
}

template <class Sink>
HWY_INLINE void run_to(const Sink& sink, workspace& w, std::size_t granules) noexcept {
  const component components[4] = {
      {w.m[0], w.step[0]}, {w.m[1], w.step[1]}, {w.m[2], w.step[2]}, {w.m[3], w.step[3]}};
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
