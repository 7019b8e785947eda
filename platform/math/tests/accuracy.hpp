// Errors of the functions in units in the last place (of the exact result), measured: double against MPFR at dense and
// hard points, float against the double function so checked.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace hvl::math::test {

struct largest_error {
  double ulp = 0;
  double argument = 0;
  std::uint64_t arguments = 0; // how many were tried

  void add(double error, double x) {
    ++arguments;
    if (!(error <= ulp)) { // NaN is the largest
      ulp = error;
      argument = x;
    }
  }
};

struct measured {
  std::string function;
  std::string domain;
  double bound; // in ulp
  largest_error error;
};

// Every `stride`-th float of each function's domain; 1 is all.
std::vector<measured> measure_float(std::uint64_t stride);

// About `points` arguments of each function, and those close to where its formula changes.
std::vector<measured> measure_double(std::uint64_t points);

} // namespace hvl::math::test
