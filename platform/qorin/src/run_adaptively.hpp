// Loops over work of unknown cost, and the choice of instruction set.
#pragma once

#include <sycl/exception.hpp>

#include <hvl/core.h>
#include <hvl/float_environment.hpp>

#include <oneapi/tbb/blocked_range.h>
#include <oneapi/tbb/parallel_for.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstddef>

namespace sycl::detail {

/// The member of `functions` for the instruction set in force.
template <class Functions>
auto chosen(const Functions& functions) {
  switch (hvl_serv_isa()) {
  case HVL_ISA_AVX512:
    return functions.avx512;
  case HVL_ISA_AVX2:
    return functions.avx2;
  case HVL_ISA_SCALAR:
    return functions.baseline;
  default:
    throw exception(make_error_code(errc::runtime), "HVL_ISA names no instruction set of this processor");
  }
}

/// `oneapi::tbb::parallel_for` whose fork and join the thread sanitizer sees: it cannot see those of oneTBB, which is
/// not built with it. Its threads compute as the calling one does, in the default floating-point environment.
template <class Range, class Body>
void fork_join(const Range& all, const Body& body) {
  std::atomic<std::size_t> pieces{0};
  pieces.store(1, std::memory_order_release);
  oneapi::tbb::parallel_for(all, [&](const Range& part) {
    (void)pieces.load(std::memory_order_acquire);
    const hvl::default_float_environment same_for_everyone;
    body(part);
    pieces.fetch_add(1, std::memory_order_release);
  });
  (void)pieces.load(std::memory_order_acquire);
}

/// Calls `run(begin, end)` for pieces of [0, count): item 0 first and alone, some more on this thread, and the rest on
/// all threads, cut at multiples of `granule`, when the work turns out to be long.
template <class Run>
void run_adaptively(std::ptrdiff_t count, std::ptrdiff_t granule, const Run& run) {
  // Below this a launch stays on its thread: other threads take longer to wake.
  constexpr auto alone_for = std::chrono::microseconds(10);
  // Doubling pieces make it clear soon that a loop is long, whether it has many cheap items or a few dear ones.
  const auto start = std::chrono::steady_clock::now();
  std::ptrdiff_t done = 0;
  for (std::ptrdiff_t piece = 1; done < count; piece = done) {
    const std::ptrdiff_t end = done + std::min(piece, count - done);
    run(done, end);
    done = end;
    if (std::chrono::steady_clock::now() - start > alone_for)
      break;
  }
  if (done == count)
    return;
  const std::ptrdiff_t grain = done < granule ? 1 : granule;
  using grains = oneapi::tbb::blocked_range<std::ptrdiff_t>;
  fork_join(grains(done / grain, (count + grain - 1) / grain), [&](const grains& part) {
    run(std::max(done, part.begin() * grain), std::min(count, part.end() * grain));
  });
}

} // namespace sycl::detail
