// The seeding of M. Matsumoto, T. Nishimura's twisters (their version of 2002), for a state of any number of words.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace hvl::streams {

template <std::size_t n>
void init_genrand(std::uint32_t (&x)[n], std::uint32_t seed) {
  x[0] = seed;
  for (std::uint32_t i = 1; i < n; ++i)
    x[i] = 1812433253u * (x[i - 1] ^ (x[i - 1] >> 30)) + i;
}

// The key has a size and words.
template <std::size_t n, class Key>
void init_by_array(std::uint32_t (&x)[n], const Key& key) {
  init_genrand(x, 19650218u);
  std::size_t i = 1;
  const auto advance = [&] {
    if (++i == n) {
      x[0] = x[n - 1];
      i = 1;
    }
  };
  for (std::size_t round = 0, j = 0; round < std::max<std::size_t>(n, key.size()); ++round) {
    x[i] = (x[i] ^ ((x[i - 1] ^ (x[i - 1] >> 30)) * 1664525u)) + key[j] + static_cast<std::uint32_t>(j);
    advance();
    j = j + 1 == key.size() ? 0 : j + 1;
  }
  for (std::size_t round = 0; round < n - 1; ++round) {
    x[i] = (x[i] ^ ((x[i - 1] ^ (x[i - 1] >> 30)) * 1566083941u)) - static_cast<std::uint32_t>(i);
    advance();
  }
  x[0] = 0x80000000; // the state is not 0
}

} // namespace hvl::streams
