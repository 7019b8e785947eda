#include <gtest/gtest.h>

#include "accuracy.hpp"

namespace hvl::math::test {
namespace {

void expect_within_bounds(const std::vector<measured>& all) {
  for (const measured& m : all)
    EXPECT_LE(m.error.ulp, m.bound) << m.function << " at " << std::hexfloat << m.error.argument;
}

TEST(accuracy, double_functions_against_mpfr) {
  expect_within_bounds(measure_double(20'000));
}

// With the stride, 8191 apart; the program math_accuracy tries every number.
TEST(accuracy, float_functions_against_double) {
  expect_within_bounds(measure_float(8191));
}

} // namespace
} // namespace hvl::math::test
