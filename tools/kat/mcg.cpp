// Prints the generated lines of tests/kat/mcg31m1.txt or, with the argument 59, of tests/kat/mcg59.txt, with
// std::linear_congruential_engine, which knows the state after a step and not before it.
#include <cstdint>
#include <cstdio>
#include <random>

#include "split_mix64.hpp"

namespace {

template <class Engine, int Shift>
void print_bits(unsigned long long first, unsigned long long skip) {
  std::printf(" skip: %llu bits:", skip);
  Engine engine(static_cast<typename Engine::result_type>(first));
  engine.discard(skip == 0 ? 0 : skip - 1);
  for (int i = 0; i < 16; ++i) {
    const unsigned long long x = i == 0 && skip == 0 ? first : engine();
    std::printf(" %08llx", x >> Shift);
  }
  std::printf("\n");
}

// The state itself, as a list of two words.
template <class Engine, int Shift>
void print_words(unsigned long long state, unsigned long long skip) {
  std::printf("words: %08llx %08llx", state & 0xffffffff, state >> 32);
  print_bits<Engine, Shift>(state % Engine::modulus, skip);
}

template <class Engine, int Shift>
void print_seed(unsigned long long seed, unsigned long long skip) {
  const unsigned long long random = split_mix64{seed}.next_long();
  std::printf("seed: %llu", seed);
  print_bits<Engine, Shift>(Shift == 0 ? random % (Engine::modulus - 1) + 1 : random % Engine::modulus | 1,
                            skip);
}

template <class Engine, int Shift>
void print_all() {
  print_words<Engine, Shift>(1, 0);
  print_words<Engine, Shift>(1, 1);
  print_words<Engine, Shift>(0x123456789abcdef1, 5);
  print_seed<Engine, Shift>(0, 0);
  print_seed<Engine, Shift>(1, 0);
  print_seed<Engine, Shift>(2, 0);
  print_seed<Engine, Shift>(12345, 997);
  print_seed<Engine, Shift>(2147483650, 5);
  print_seed<Engine, Shift>(987654321, 10'000'000);
  print_seed<Engine, Shift>(0xfedcba9876543210, 3);
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
