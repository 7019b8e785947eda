// Powers with exponents of any number of 64-bit words.
#pragma once

#include <cstdint>
#include <span>

namespace hvl::streams {

// base^exponent by the bits of the exponent, lowest first; `multiply` is associative and `one` its identity.
template <class T, class Multiply>
T power(T base, std::span<const std::uint64_t> exponent, T one, const Multiply& multiply) {
  while (!exponent.empty() && exponent.back() == 0)
    exponent = exponent.first(exponent.size() - 1);
  T result = one;
  for (std::size_t i = 0; i < exponent.size(); ++i) {
    const bool last = i + 1 == exponent.size();
    for (std::uint64_t bits = exponent[i], left = 64; last ? bits != 0 : left != 0; bits >>= 1, --left) {
      if (bits & 1)
        result = multiply(result, base);
      base = multiply(base, base);
    }
  }
  return result;
}

} // namespace hvl::streams
