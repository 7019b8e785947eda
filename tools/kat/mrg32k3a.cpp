// Prints the generated lines of tests/kat/mrg32k3a.txt: the author's floating-point implementation (figure 1
// of the paper that the data file names), stepped one number at a time.
#include <cmath>
#include <cstdint>
#include <cstdio>

#include "split_mix64.hpp"

namespace {

constexpr double m1 = 4294967087.0;
constexpr double m2 = 4294944443.0;

struct mrg {
  double s10, s11, s12, s20, s21, s22;

  double next() {
    double p1 = 1403580.0 * s11 - 810728.0 * s10;
    p1 -= std::trunc(p1 / m1) * m1;
    if (p1 < 0.0)
      p1 += m1;
    s10 = s11;
    s11 = s12;
    s12 = p1;
    double p2 = 527612.0 * s22 - 1370589.0 * s20;
    p2 -= std::trunc(p2 / m2) * m2;
    if (p2 < 0.0)
      p2 += m2;
    s20 = s21;
    s21 = s22;
    s22 = p2;
    return p1 <= p2 ? p1 - p2 + m1 : p1 - p2;
  }
};

void print_bits(const std::uint32_t (&w)[6], unsigned long long skip) {
  mrg engine{static_cast<double>(w[0]), static_cast<double>(w[1]), static_cast<double>(w[2]),
             static_cast<double>(w[3]), static_cast<double>(w[4]), static_cast<double>(w[5])};
  for (unsigned long long i = 0; i < skip; ++i)
    engine.next();
  std::printf(" skip: %llu bits:", skip);
  for (int i = 0; i < 16; ++i)
    std::printf(" %08lx", static_cast<unsigned long>(engine.next()));
  std::printf("\n");
}

void print(const std::uint32_t (&w)[6], unsigned long long skip) {
  std::printf("words:");
  for (const std::uint32_t word : w)
    std::printf(" %08lx", static_cast<unsigned long>(word));
  print_bits(w, skip);
}

void print_seed(unsigned long long seed, unsigned long long skip) {
  split_mix64 random{seed};
  std::uint32_t w[6];
  for (int i = 0; i < 6; ++i)
    w[i] = static_cast<std::uint32_t>(random.next_long() % (i < 3 ? 4294967087u : 4294944443u));
  std::printf("seed: %llu", seed);
  print_bits(w, skip);
}

} // namespace

int main() {
  print({12345, 12345, 12345, 12345, 12345, 12345}, 0);
  print({12345, 12345, 12345, 12345, 12345, 12345}, 9'999'995);
  print({1, 1, 1, 1, 1, 1}, 1);
  print({4294967086u, 4294967086u, 4294967086u, 4294944442u, 4294944442u, 4294944442u}, 0);
  print({0, 0, 1, 0, 0, 1}, 2047);
  print({7, 7, 7, 7, 7, 7}, 3);
  print_seed(0, 0);
  print_seed(1, 0);
  print_seed(2, 0);
  print_seed(4294967295, 2047);
  print_seed(0xfedcba9876543210, 999'999);
}
