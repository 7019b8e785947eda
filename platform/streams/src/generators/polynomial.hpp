// Pieces of arithmetic with polynomials over GF(2), a coefficient to a bit, the least first.
#pragma once

#include <cstddef>
#include <cstdint>

namespace hvl::streams {

inline constexpr std::size_t polynomial_bits = 64; // of a word

// Bit i of `half` at bit 2 i: the square of 32 coefficients.
constexpr std::uint64_t spread(std::uint32_t half) {
  std::uint64_t w = half;
  w = (w | w << 16) & 0x0000FFFF0000FFFF;
  w = (w | w << 8) & 0x00FF00FF00FF00FF;
  w = (w | w << 4) & 0x0F0F0F0F0F0F0F0F;
  w = (w | w << 2) & 0x3333333333333333;
  return (w | w << 1) & 0x5555555555555555;
}

// Adds 64 coefficients from exponent `bit` on.
constexpr void xor_word_at(std::uint64_t* words, std::size_t bit, std::uint64_t word) {
  words[bit / polynomial_bits] ^= word << bit % polynomial_bits;
  if (bit % polynomial_bits != 0)
    words[bit / polynomial_bits + 1] ^= word >> (polynomial_bits - bit % polynomial_bits);
}

} // namespace hvl::streams
