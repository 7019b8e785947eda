// The step of a digital sequence, a row of words at a time.
#include "simd/isa.hpp"

namespace hvl::streams::HVL_STREAMS_ISA {

// Without a call on the way the compiler makes vectors of the unit's width of it.
void next_row(std::uint32_t* __restrict out, std::uint32_t* __restrict row,
              const std::uint32_t* __restrict change, std::size_t words) noexcept {
  for (std::size_t i = 0; i < words; ++i) {
    const std::uint32_t x = row[i];
    out[i] = x;
    row[i] = x ^ change[i];
  }
}

} // namespace hvl::streams::HVL_STREAMS_ISA
