// A process of its own: the first thing that it does is to use the runtime in another floating-point environment.
#include <sycl/sycl.hpp>

#include <gtest/gtest.h>

#include <oneapi/tbb/parallel_for.h>

#include <cfenv>
#include <cstring>
#include <limits>

#include <immintrin.h>

namespace {

constexpr unsigned flush_to_zero = 0x8040;
constexpr float five_thirds = 5.0f / 3.0f; // smaller than 5/3
constexpr float tiny = std::numeric_limits<float>::min();

struct results {
  float quotient, denormal;
  bool operator==(const results& other) const { // of bits: comparing numbers flushes, too
    return std::memcmp(this, &other, sizeof other) == 0;
  }
};
constexpr results right = {five_thirds, tiny * 0.5f};

/// What a command computes, with operands that no compiler sees.
results computed(const float* five_three_tiny) {
  return {five_three_tiny[0] / five_three_tiny[1], five_three_tiny[2] * 0.5f};
}

/// Long enough for all threads.
constexpr std::size_t items = 1 << 20;

TEST(float_environment, of_the_caller_reaches_no_command) {
  std::fesetround(FE_UPWARD);
  _mm_setcsr(_mm_getcsr() | flush_to_zero);
  const unsigned callers = _mm_getcsr();
  oneapi::tbb::parallel_for(0, 64, [](int) {}); // oneTBB takes the environment to its threads
  std::size_t wrong = 0;
  for (const bool gpu : {false, true}) {
    sycl::queue q{gpu ? sycl::device(sycl::gpu_selector_v) : sycl::device(sycl::cpu_selector_v)};
    auto* const operands = sycl::malloc_shared<float>(3, q);
    operands[0] = 5;
    operands[1] = 3;
    operands[2] = tiny;
    auto* const out = sycl::malloc_shared<results>(items, q);
    const auto count_wrong = [&](std::size_t count) {
      for (std::size_t i = 0; i < count; ++i)
        wrong += !(out[i] == right);
    };
    for (int round = 0; round < 20; ++round) { // on the waiting thread, or elsewhere
      q.parallel_for(items, [=](sycl::id<1> i) { out[i] = computed(operands); }).wait();
      count_wrong(items);
    }
    q.parallel_for(sycl::nd_range<1>(items / 16, 64), [=](sycl::nd_item<1> item) {
       sycl::group_barrier(item.get_group());
       out[item.get_global_id(0)] = computed(operands);
     }).wait();
    count_wrong(items / 16);
    for (int i = 0; i < 100; ++i) // some run on the waiting thread, some elsewhere
      q.submit([&](sycl::handler& h) { h.host_task([=] { out[i] = computed(operands); }); });
    q.wait();
    count_wrong(100);
    sycl::free(operands, q);
    sycl::free(out, q);
  }
  constexpr unsigned flags = 0x3f;
  const unsigned after = _mm_getcsr();
  const int rounding_after = std::fegetround();
  std::fesetenv(FE_DFL_ENV);
  EXPECT_EQ(wrong, 0u);
  EXPECT_EQ(after & ~flags, callers & ~flags);
  EXPECT_EQ(rounding_after, FE_UPWARD);
}

} // namespace
