// A thousand calls in flight at once, from several threads, on both paths.
#include "support.hpp"

#include <kestro/hvl/offload.h>

#include <malloc.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <thread>

namespace offload_test {
namespace {

constexpr int threads = 4, calls_per_thread = 250, calls = threads * calls_per_thread;
constexpr std::int64_t n = 2000;

constexpr std::int32_t engines[] = {VQS_ENGINE_PHILOX4X32X10, VQS_ENGINE_MT19937, VQS_ENGINE_MCG59,
                                    VQS_ENGINE_MRG32K3A};

/// Calls from several threads, each on a stream of its own; nobody waits in between.
void run_and_compare(const target& device) {
  const std::int64_t before = device.completions();
  std::vector<std::vector<double>> outputs(threads, std::vector<double>(calls_per_thread * n, -1));
  {
    std::vector<std::jthread> callers;
    for (int t = 0; t < threads; ++t)
      callers.emplace_back([&, t] {
        const stream numbers(engines[t], 5);
        for (int c = 0; c < calls_per_thread; ++c)
          EXPECT_EQ(hvl_vqs_vdRngUniform_omp_offload_ilp64(0, numbers, n, &outputs[t][c * n], 0, 1,
                                                           device.interop()),
                    0);
      });
  }
  device.wait(before + calls);
  for (int t = 0; t < threads; ++t) {
    const stream numbers(engines[t], 5);
    std::vector<double> expected(calls_per_thread * n, -2);
    ASSERT_EQ(vdRngUniform_64(0, numbers, calls_per_thread * n, expected.data(), 0, 1), 0);
    EXPECT_EQ(std::memcmp(outputs[t].data(), expected.data(), expected.size() * sizeof(double)), 0)
        << engines[t];
  }
  // Each once: a completion that came twice would be counted by now.
  const stream last;
  EXPECT_EQ(hvl_vqs_vdRngUniform_omp_offload_ilp64(0, last, 1, outputs[0].data(), 0, 1, device.interop()), 0);
  device.wait(before + calls + 1);
  EXPECT_EQ(device.completions(), before + calls + 1);
}

class in_flight : public testing::TestWithParam<path> {};

TEST_P(in_flight, every_completion_arrives_once_and_the_numbers_are_the_hosts) {
  const target device(GetParam());
  run_and_compare(device);
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
/// The least memory in use after one of `rounds` runs: what is still being taken down after a run's last completion, and
/// lists that grew with it, are not in the least.
std::ptrdiff_t least_memory_after(int rounds, const target& device) {
  auto least = std::numeric_limits<std::ptrdiff_t>::max();
  for (int round = 0; round < rounds; ++round) {
    run_and_compare(device);
    least = std::min(least, static_cast<std::ptrdiff_t>(mallinfo2().uordblks));
  }
  return least;
}

TEST_P(in_flight, memory_returns_to_where_it_was) {
  const target device(GetParam());
  const auto before = least_memory_after(3, device), after = least_memory_after(4, device);
  // A call that kept the smallest piece of memory, 32 bytes, would leave three times as much.
  EXPECT_LT(after - before, 32 * calls);
}
#endif

INSTANTIATE_TEST_SUITE_P(paths, in_flight, testing::Values(path::opencl, path::zerlin),
                         [](const auto& given) { return given.param == path::opencl ? "opencl" : "zerlin"; });

} // namespace
} // namespace offload_test
