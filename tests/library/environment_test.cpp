#include <immintrin.h>

#include "support.hpp"

namespace kestro::hvl::rng::test {
namespace {

// Neither rounding nor flushing of subnormals in the calling thread changes a number.
TEST(environment_test, of_the_caller_changes_nothing) {
  const auto check = [](auto distribution) {
    on_every_device([&](sycl::queue& queue) {
      philox4x32x10 engine(queue, 5), again = engine;
      const auto expected = usm_values(distribution, engine, queue, 2000);
      const unsigned before = _mm_getcsr();
      for (const unsigned mode : {0x2000u, 0x4000u, 0x6000u, 0x8040u}) { // down, up, towards 0; flush
        philox4x32x10 there = again;
        _mm_setcsr(before | mode);
        const auto values = usm_values(distribution, there, queue, 2000);
        _mm_setcsr(before);
        expect_same(values, expected);
      }
    });
  };
  check(uniform<float>(-1.0f / 3, 1.0f));
  check(uniform<float, uniform_method::accurate>(1e-40f, 3e-40f));
  check(uniform<int>(-16777219, 1000000007));
  check(uniform<double>(-1.0 / 3, 1.0));
  check(gaussian<float, gaussian_method::icdf>(0.3f, 0.7f));
  check(weibull<double>(1.7, 0.3, 0.7));
  check(gamma<float>(0.3f, 0.7f, 1.9f));
  check(gamma<double>(100.0, 0.3, 0.7));
  check(gaussian_mv<float>({0.3f, 0.1f}, {0.7f, -0.9f, 1e-38f}));
  check(beta<float>(0.7f, 2.3f, 0.3f, 0.7f));
  check(beta<double>(0.3, 0.4, 0.3, 0.7));
  check(geometric<int>(1e-7));
  check(bernoulli<int>(0.7));
  check(poisson<int>(3e4));
  check(hypergeometric<int>(2147483647, 1000000000, 99999999));
  check(negative_binomial<int>(0.3, 1e-3));
  check(multinomial<int>(1000, {0.01, 0.6, 0.39}));
}

} // namespace
} // namespace kestro::hvl::rng::test
