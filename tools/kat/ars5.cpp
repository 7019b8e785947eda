// Prints the lines of tests/kat/ars5.txt with the authors' own implementation; needs -maes.
#include <Random123/ars.h>

#include <array>
#include <cstdint>
#include <cstdio>

namespace {

using ars = r123::ARS4x32_R<5>;

void print_bits(const std::array<std::uint32_t, 8>& words, std::uint64_t skip, int outputs) {
  std::printf(" bits:");
  for (int i = 0; i < outputs; ++i) {
    const std::uint64_t position = skip + static_cast<std::uint64_t>(i);
    std::uint64_t carry = position / 4;
    ars::ctr_type counter{};
    for (std::size_t w = 0; w < 4; ++w) {
      carry += words[w + 4];
      counter[w] = static_cast<std::uint32_t>(carry);
      carry >>= 32;
    }
    std::printf(" %08x", ars()(counter, {{words[0], words[1], words[2], words[3]}})[position % 4]);
  }
  std::printf("\n");
}

void print(const std::array<std::uint32_t, 8>& words, std::uint64_t skip, int outputs) {
  std::printf("words:");
  for (const std::uint32_t word : words)
    std::printf(" %08x", word);
  std::printf(" skip: %llu", static_cast<unsigned long long>(skip));
  print_bits(words, skip, outputs);
}

void print_seed(std::uint64_t seed, int outputs) {
  std::printf("seed: %llu", static_cast<unsigned long long>(seed));
  print_bits({static_cast<std::uint32_t>(seed), static_cast<std::uint32_t>(seed >> 32)}, 0, outputs);
}

} // namespace

int main() {
  constexpr std::uint32_t all = 0xffffffff;
  print({0, 0, 0, 0, 0, 0, 0, 0}, 0, 8);
  print({all, all, all, all, all, all, all, all}, 0, 8);
  print({0xa4093822, 0x299f31d0, 0x082efa98, 0xec4e6c89, 0x243f6a88, 0x85a308d3, 0x13198a2e, 0x03707344}, 0,
        8);
  print({1, 0, 0, 0, 0, 0, 0, 0}, 0, 12);
  print({0x9abcdef0, 0x12345678, 0, 0, 0, 0, 0, 0}, 1000003, 9);
  print({7, 7, 7, 7, 0xfffffffe, all, 0, 0}, 0, 16);      // carries into the third counter word
  print({7, 8, 9, 10, 0xfffffffd, all, all, all}, 2, 20); // wraps to zero
  print({3, 5, 7, 9, 11, 13, 17, 19}, 4611686018427387907u, 8);
  print_seed(0x0123456789abcdef, 8);
}
