// Prints the generated lines of tests/kat/niederreiter.txt, with Boost's niederreiter_base2, which leaves out the first
// point; its first 12 dimensions are compared with GSL's.
#include <gsl/gsl_qrng.h>

#include <boost/random/niederreiter_base2.hpp>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

constexpr std::size_t most = 4720;
using niederreiter = boost::random::niederreiter_base2_engine<std::uint32_t, 32>;

void print_bits(std::size_t dimensions, unsigned long long point, std::size_t coordinate, int count) {
  niederreiter engine(dimensions);
  if (point > 0)
    engine.discard((point - 1) * dimensions + coordinate);
  std::printf("seed: %zu skip: %llu bits:", dimensions, point * dimensions + coordinate);
  const std::size_t zeros = point > 0 ? 0 : dimensions - coordinate;
  for (int i = 0; i < count; ++i)
    std::printf(" %08x", static_cast<std::size_t>(i) < zeros ? 0u : static_cast<unsigned>(engine()));
  std::printf("\n");
}

void compare_with_gsl() {
  gsl_qrng* const other = gsl_qrng_alloc(gsl_qrng_niederreiter_2, 12);
  niederreiter engine(12);
  std::vector<double> point(12);
  gsl_qrng_get(other, point.data()); // the first point
  for (int i = 0; i < 100'000; ++i) {
    gsl_qrng_get(other, point.data());
    for (const double x : point)
      if (static_cast<std::uint32_t>(x * 0x1p31) != static_cast<std::uint32_t>(engine()) >> 1)
        std::abort();
  }
  gsl_qrng_free(other);
}

} // namespace

int main() {
  compare_with_gsl();
  for (const std::size_t dimensions : {1u, 2u, 3u, 7u, 10u})
    print_bits(dimensions, 0, 0, 40);
  for (const std::size_t dimensions : {1u, 2u, 5u, 12u, 200u})
    print_bits(dimensions, 12345, 0, 64);
  print_bits(1, 10'000'000, 0, 16);
  print_bits(2, 33'554'430, 1, 16);
  print_bits(318, 255, 300, 64);
  print_bits(1000, 1'000'003, 993, 32);
  print_bits(most, 3, 0, 16);
  print_bits(most, 77'777, 4'700, 40);
}
