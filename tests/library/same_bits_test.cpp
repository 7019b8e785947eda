// The promise of the library: the same bits on every device, in every form, under every instruction set.
#include <immintrin.h>

#include "support.hpp"

namespace kestro::hvl::rng::test {
namespace {

template <class Engine>
class same_bits_test : public ::testing::Test {};
TYPED_TEST_SUITE(same_bits_test, all_engines, engine_names);

template <class Distribution, class Engine>
auto in_calls(const Distribution& distribution, Engine engine, sycl::queue& queue, bool in_usm) {
  std::vector<typename Distribution::result_type> values;
  for (const std::int64_t n : {1, 2, 3, 1000, 5, 7001}) { // odd sizes leave engines in mid-block
    const auto part =
        in_usm ? usm_values(distribution, engine, queue, n, 1) : buffer_values(distribution, engine, n);
    values.insert(values.end(), part.begin(), part.end());
  }
  return values;
}

TYPED_TEST(same_bits_test, every_distribution) {
  auto cpu = devices()[0].queue, gpu = devices()[1].queue;
  std::size_t offered = 0;
  for_each_distribution([&](auto distribution) {
    std::vector<typename decltype(distribution)::result_type> expected;
    try {
      expected = in_calls(distribution, TypeParam(cpu, 99), cpu, true);
    } catch (const unimplemented&) {
      return;
    }
    ++offered;
    under_every_instruction_set([&] {
      expect_same(in_calls(distribution, TypeParam(cpu, 99), cpu, true), expected);
      expect_same(in_calls(distribution, TypeParam(cpu, 99), cpu, false), expected);
      expect_same(in_calls(distribution, TypeParam(gpu, 99), gpu, true), expected);
      expect_same(in_calls(distribution, TypeParam(gpu, 99), gpu, false), expected);
    });
  });
  EXPECT_GE(offered, 41u); // all, or all but uniform_bits
}

// Sizes at which calls are cut into pieces for threads, streamed past the caches, or made in segments.
TYPED_TEST(same_bits_test, long_calls) {
  auto cpu = devices()[0].queue, gpu = devices()[1].queue;
  for (const std::int64_t n : {300001, 9000011}) {
    TypeParam on_cpu(cpu, 3), on_gpu(gpu, 3);
    const auto expected = usm_values(uniform<float>(), on_cpu, cpu, n);
    const auto actual = usm_values(uniform<float>(), on_gpu, gpu, n);
    ASSERT_TRUE(same_bits(actual.data(), expected.data(), expected.size()));
    expect_same(usm_values(bits<>(), on_gpu, gpu, 10), usm_values(bits<>(), on_cpu, cpu, 10));
  }
}

// Neither rounding nor flushing of subnormals in the calling thread.
TEST(environment_test, of_the_caller_changes_nothing) {
  // on a GPU device the kernels' environment is the runtime's affair
  sycl::queue queue = devices()[0].queue;
  const auto check = [&](auto distribution) {
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
  };
  check(uniform<float>(-1.0f / 3, 1.0f));
  check(uniform<float, uniform_method::accurate>(1e-40f, 3e-40f));
  check(uniform<int>(-16777219, 1000000007));
  check(uniform<double>(-1.0 / 3, 1.0));
  check(gaussian<float, gaussian_method::icdf>(0.3f, 0.7f));
  check(weibull<double>(1.7, 0.3, 0.7));
}

} // namespace
} // namespace kestro::hvl::rng::test
