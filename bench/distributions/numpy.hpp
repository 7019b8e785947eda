// NumPy's distributions, from the library that it ships for C, and its fastest bit generator: SFC64 (C. Doty-Humphrey,
// PractRand 0.95, 2019), written anew since NumPy keeps it in a Python module.
#pragma once

#include <numpy/random/bitgen.h>

#include <cstddef>
#include <cstdint>

// As <numpy/random/distributions.h> declares them; that header needs Python's.
extern "C" {
double random_standard_gamma(bitgen_t* bits, double shape);
float random_standard_gamma_f(bitgen_t* bits, float shape);
void random_standard_normal_fill(bitgen_t* bits, std::ptrdiff_t count, double* out);
void random_standard_normal_fill_f(bitgen_t* bits, std::ptrdiff_t count, float* out);
double random_beta(bitgen_t* bits, double a, double b);
double random_chisquare(bitgen_t* bits, double degrees);
std::int64_t random_geometric(bitgen_t* bits, double p);
std::int64_t random_poisson(bitgen_t* bits, double mean);
std::int64_t random_negative_binomial(bitgen_t* bits, double a, double p);
std::int64_t random_hypergeometric(bitgen_t* bits, std::int64_t marked, std::int64_t others,
                                   std::int64_t sample);

struct binomial_t { // what is prepared for the last parameters
  int has_binomial;
  double psave;
  std::int64_t nsave;
  double r, q, fm;
  std::int64_t m;
  double p1, xm, xl, xr, c, laml, lamr, p2, p3, p4;
};
std::int64_t random_binomial(bitgen_t* bits, double p, std::int64_t trials, binomial_t* prepared);
void random_multinomial(bitgen_t* bits, std::int64_t trials, std::int64_t* counts, double* p,
                        std::ptrdiff_t outcomes, binomial_t* prepared);
}

namespace bench {

class numpy_sfc64 {
 public:
  explicit numpy_sfc64(std::uint64_t seed) : a_(seed), b_(seed), c_(seed) {
    for (int i = 0; i < 12; ++i)
      next();
  }

  // Refers to this generator, which must stay where it is.
  bitgen_t bits() {
    const auto whole = [](void* self) { return of(self).next(); };
    return {this, whole, [](void* self) { return of(self).next_half(); },
            [](void* self) { return static_cast<double>(of(self).next() >> 11) * 0x1p-53; }, whole};
  }

 private:
  static numpy_sfc64& of(void* self) { return *static_cast<numpy_sfc64*>(self); }

  std::uint64_t next() {
    const std::uint64_t result = a_ + b_ + counter_++;
    a_ = b_ ^ (b_ >> 11);
    b_ = c_ + (c_ << 3);
    c_ = (c_ << 24 | c_ >> 40) + result;
    return result;
  }

  // Half a word at a time, the lower one first.
  std::uint32_t next_half() {
    has_half_ = !has_half_;
    if (!has_half_)
      return half_;
    const std::uint64_t whole = next();
    half_ = static_cast<std::uint32_t>(whole >> 32);
    return static_cast<std::uint32_t>(whole);
  }

  std::uint64_t a_, b_, c_;
  std::uint64_t counter_ = 1;
  std::uint32_t half_ = 0;
  bool has_half_ = false;
};

} // namespace bench
