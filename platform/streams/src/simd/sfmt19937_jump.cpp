// The reduction of a polynomial of sfmt19937: loops that the compiler turns into vectors.
#include <cstring>

#include "simd/isa.hpp"

namespace hvl::streams::HVL_STREAMS_ISA {

void fold_bytes(std::uint64_t* product, const std::uint64_t* rows, std::size_t words) noexcept {
  auto* const bytes = reinterpret_cast<unsigned char*>(product);
  for (std::size_t k = 8 * words; k-- != 0;) {
    const unsigned top = bytes[8 * words + k];
    const std::uint64_t* const low = rows + (top & 15) * words;
    const std::uint64_t* const high = rows + (16 + (top >> 4)) * words;
    unsigned char* const at = bytes + k;
    for (std::size_t i = 0; i < words; ++i) {
      std::uint64_t word;
      std::memcpy(&word, at + 8 * i, sizeof word);
      word ^= low[i] ^ high[i];
      std::memcpy(at + 8 * i, &word, sizeof word);
    }
  }
}

} // namespace hvl::streams::HVL_STREAMS_ISA
