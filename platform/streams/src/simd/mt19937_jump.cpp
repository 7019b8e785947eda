// The summation of a jump of mt19937 or sfmt19937: windows of the sequence at the polynomial's set bits.
#include "generators/mt19937.hpp"

#include "simd/isa.hpp"

namespace hvl::streams::HVL_STREAMS_ISA {
namespace {

constexpr std::size_t words = engines::mt19937::recurrence::size;

// Columns [first, first + width) of the window sum.
#ifdef HVL_STREAMS_ISA_IS_SCALAR
constexpr std::size_t width = 104;
#else
namespace hn = hwy::HWY_NAMESPACE;
const hn::ScalableTag<std::uint32_t> d;
constexpr std::size_t lanes = hn::MaxLanes(hn::ScalableTag<std::uint32_t>());
constexpr std::size_t vectors = 13; // accumulators that stay in registers
constexpr std::size_t width = vectors * lanes;
#endif
static_assert(words % width == 0);

void xor_columns(std::uint32_t* sum, const std::uint32_t* sequence, std::size_t unit,
                 const std::uint64_t* polynomial, std::size_t degree) noexcept {
#ifdef HVL_STREAMS_ISA_IS_SCALAR
  std::uint32_t a[width] = {};
  const auto add = [&a](const std::uint32_t* from) {
    for (std::size_t i = 0; i < width; ++i)
      a[i] ^= from[i];
  };
#else
  decltype(hn::Zero(d)) a[vectors];
#pragma GCC unroll 13
  for (std::size_t v = 0; v < vectors; ++v)
    a[v] = hn::Zero(d);
  const auto add = [&a](const std::uint32_t* from) __attribute__((always_inline)) {
#pragma GCC unroll 13
    for (std::size_t v = 0; v < vectors; ++v)
      a[v] = hn::Xor(a[v], hn::LoadU(d, from + v * lanes));
  };
#endif
  for (std::size_t word = 0; word < (degree + 63) / 64; ++word)
    for (std::uint64_t bits = polynomial[word]; bits != 0; bits &= bits - 1)
      add(sequence + unit * (64 * word + static_cast<std::size_t>(__builtin_ctzll(bits))));
#ifdef HVL_STREAMS_ISA_IS_SCALAR
  for (std::size_t i = 0; i < width; ++i)
    sum[i] = a[i];
#else
#pragma GCC unroll 13
  for (std::size_t v = 0; v < vectors; ++v)
    hn::StoreU(a[v], d, sum + v * lanes);
#endif
}

} // namespace

void xor_windows(std::uint32_t* sum, const std::uint32_t* sequence, std::size_t unit,
                 const std::uint64_t* polynomial, std::size_t degree) noexcept {
  for (std::size_t first = 0; first < words; first += width)
    xor_columns(sum + first, sequence + first, unit, polynomial, degree);
}

} // namespace hvl::streams::HVL_STREAMS_ISA
