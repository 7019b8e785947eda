#pragma once

#include <sycl/sycl.hpp>

namespace kestro::hvl::gpu {

/// The first call of the process finds the GPUs of the backend that `q` has, numbers them and prints them;
/// every later call does nothing.
void list_gpus_once(const sycl::queue& q);

/// The number of a listed GPU; negative for any other device.
int listed_gpu_index(const sycl::device& device);

} // namespace kestro::hvl::gpu
