// The limit of everything that fills memory.
#pragma once

#include <sycl/sycl.hpp>

#include <cstddef>

namespace hvl_rng {

// Fills USM memory as fast as the queue's device can, and returns the seconds that it took. A CPU device is also tried by
// streaming stores of all its threads.
double fill_memory(sycl::queue& queue, void* memory, std::size_t bytes);

} // namespace hvl_rng
