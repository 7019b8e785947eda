// Prints the generated lines of tests/kat/mcg31m1.txt or, with the argument 59, of tests/kat/mcg59.txt, with
// std::linear_congruential_engine, which knows the state after a step and not before it.
#include <cstdint>
#include <cstdio>
#include <random>

namespace {

template <class Engine, int Shift>
void print(unsigned long long seed, unsigned long long skip) {
  std::printf("seed: %llu skip: %llu bits:", seed, skip);
  Engine engine(static_cast<typename Engine::result_type>(seed));
  engine.discard(skip == 0 ? 0 : skip - 1);
  for (int i = 0; i < 16; ++i) {
    const unsigned long long x = i == 0 && skip == 0 ? seed % Engine::modulus : engine();
    std::printf(" %08llx", x >> Shift);
  }
  std::printf("\n");
}

template <class Engine, int Shift>
void print_all() {
  print<Engine, Shift>(1, 0);
  print<Engine, Shift>(1, 1);
  print<Engine, Shift>(12345, 997);
  print<Engine, Shift>(2147483650, 5);
  print<Engine, Shift>(987654321, 10'000'000);
}

} // namespace

int main(int count, char**) {
  using mcg31m1 = std::linear_congruential_engine<std::uint32_t, 1132489760, 0, 2147483647>;
  using mcg59 = std::linear_congruential_engine<std::uint64_t, 302875106592253, 0, std::uint64_t{1} << 59>;
  if (count == 1)
    print_all<mcg31m1, 0>();
  else
    print_all<mcg59, 27>();
}
