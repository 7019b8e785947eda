// Prints the lines of tests/kat/r250.txt. GSL's r250 has the lag 147: read backwards its sequence is ours, and so its
// outputs in reverse give both the words of a state and what follows them. The lines with a seed come from the
// definition, one word at a time.
#include <gsl/gsl_rng.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <vector>

#include "split_mix64.hpp"

namespace {

using words = std::vector<std::uint32_t>;

void print_bits(std::size_t skip, const words& x, std::size_t first) {
  std::printf(" skip: %zu bits:", skip);
  for (std::size_t i = first; i < first + 16; ++i)
    std::printf(" %08x", x[i]);
  std::printf("\n");
}

void print_reversed(unsigned long seed, std::size_t skip) {
  gsl_rng* rng = gsl_rng_alloc(gsl_rng_r250);
  gsl_rng_set(rng, seed);
  words x(250 + skip + 16);
  std::generate(x.rbegin(), x.rend(), [rng] { return static_cast<std::uint32_t>(gsl_rng_get(rng)); });
  gsl_rng_free(rng);
  std::printf("words:");
  for (std::size_t i = 0; i < 250; ++i)
    std::printf(" %08x", x[i]);
  print_bits(skip, x, 250 + skip);
}

void print_seeded(std::uint64_t seed, std::size_t skip) {
  split_mix64 spread{seed};
  words x(250);
  for (std::uint32_t& word : x)
    word = static_cast<std::uint32_t>(spread.next_long() >> 32);
  for (unsigned i = 0; i < 32; ++i) { // bit 31 - i is set, those above it cleared
    std::uint32_t& word = x[7 * i + 3];
    for (unsigned bit = 31; bit > 31 - i; --bit)
      word &= ~(std::uint32_t{1} << bit);
    word |= std::uint32_t{1} << (31 - i);
  }
  for (std::size_t k = 250; k < 250 + skip + 16; ++k)
    x.push_back(x[k - 103] ^ x[k - 250]);
  std::printf("seed: %llu", static_cast<unsigned long long>(seed));
  print_bits(skip, x, 250 + skip);
}

} // namespace

int main() {
  print_reversed(1, 0);
  print_reversed(42, 249);
  print_reversed(20211113, 12'345'678);
  print_seeded(0, 0);
  print_seeded(1, 0);
  print_seeded(12345, 103);
  print_seeded(0xFEDCBA9876543210, 1'000'003);
  print_seeded(7, 123'456'789);
}
