#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace hvl::engines {

// base^exponent; `multiply` is associative and `one` its identity.
template <class T, class Multiply>
constexpr T power(T base, std::uint64_t exponent, T one, const Multiply& multiply) {
  T result = one;
  for (; exponent != 0; exponent >>= 1) {
    if (exponent & 1)
      result = multiply(result, base);
    base = multiply(base, base);
  }
  return result;
}

// The exponent's least significant word comes first.
template <class T, class Multiply>
constexpr T power(T base, std::span<const std::uint64_t> exponent, T one, const Multiply& multiply) {
  while (!exponent.empty() && exponent.back() == 0)
    exponent = exponent.first(exponent.size() - 1);
  T result = one;
  for (std::size_t i = 0; i < exponent.size(); ++i) {
    result = multiply(result, power(base, exponent[i], one, multiply));
    for (int squaring = 0; squaring < 64 && i + 1 < exponent.size(); ++squaring)
      base = multiply(base, base);
  }
  return result;
}

} // namespace hvl::engines
