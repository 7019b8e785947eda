// Prints the generated lines of tests/kat/mt19937.txt with std::mt19937.
#include <cstdint>
#include <cstdio>
#include <random>

namespace {

void print(std::uint32_t seed, unsigned long long skip) {
  std::mt19937 engine(seed);
  engine.discard(skip);
  std::printf("seed: %lu skip: %llu bits:", static_cast<unsigned long>(seed), skip);
  for (int i = 0; i < 16; ++i)
    std::printf(" %08lx", static_cast<unsigned long>(engine()));
  std::printf("\n");
}

} // namespace

int main() {
  print(5489, 0);
  print(5489, 9990); // the tenth is the number that the C++ standard demands, 4123659995
  print(1, 620);
  print(0, 0);
  print(4294967295, 1247);
  print(20211113, 6'000'001);
  print(7, 123'456'789);
}
