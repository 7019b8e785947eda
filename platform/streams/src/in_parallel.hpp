#pragma once

#include <oneapi/tbb/parallel_for.h>

#include <atomic>
#include <cstddef>

#include "hvl/float_environment.hpp"

namespace hvl::streams {

// body(i) for every i of [first, last), over the threads of the calling arena, which inherit their floating-point
// environment from whoever started them. oneTBB orders the bodies after what precedes the call and before what follows
// it; the atomic says so once more, where the thread sanitizer can see it.
template <class Body>
void in_parallel(std::size_t first, std::size_t last, const Body& body) {
  std::atomic<std::size_t> order{0};
  order.store(1, std::memory_order_release);
  tbb::parallel_for(
      first, last,
      [&](std::size_t i) {
        order.load(std::memory_order_acquire);
        const default_float_environment environment; // body computes behind calls that are not inlined
        body(i);
        order.fetch_add(1, std::memory_order_release);
      },
      tbb::simple_partitioner());
  order.load(std::memory_order_acquire);
}

} // namespace hvl::streams
