// Prints the generated lines of tests/kat/philox4x32x10.txt with the authors' own implementation.
#include <Random123/philox.h>

#include <array>
#include <cstdint>
#include <cstdio>

namespace {

void print(std::array<std::uint32_t, 6> words, std::uint64_t skip, int outputs) {
  std::printf("words:");
  for (const std::uint32_t word : words)
    std::printf(" %08x", word);
  std::printf(" skip: %llu bits:", static_cast<unsigned long long>(skip));
  const r123::Philox4x32 philox;
  for (int i = 0; i < outputs; ++i) {
    const std::uint64_t position = skip + static_cast<std::uint64_t>(i);
    std::uint64_t carry = position / 4;
    r123::Philox4x32::ctr_type counter{};
    for (std::size_t w = 0; w < 4; ++w) {
      carry += words[w + 2];
      counter[w] = static_cast<std::uint32_t>(carry);
      carry >>= 32;
    }
    std::printf(" %08x", philox(counter, {{words[0], words[1]}})[position % 4]);
  }
  std::printf("\n");
}

} // namespace

int main() {
  print({1, 0, 0, 0, 0, 0}, 0, 12);
  print({0x9abcdef0, 0x12345678, 0, 0, 0, 0}, 1000003, 9);
  print({7, 7, 0xfffffffe, 0xffffffff, 0, 0}, 0, 16);                   // carries into the third counter word
  print({7, 7, 0xfffffffd, 0xffffffff, 0xffffffff, 0xffffffff}, 2, 20); // wraps to zero
  print({3, 5, 11, 13, 17, 19}, 4611686018427387907u, 8);
}
