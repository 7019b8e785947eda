#pragma once

#include <sycl/sycl.hpp>

/// What traces and caches know of a device, one function per fact.
namespace kestro::hvl::gpu {

/// Who drives a device. A backend of another kind has a code of its own outside these.
enum hvl_gpu_backend_t : int {
  backend_opencl = 0,
  backend_zerlin = 1,
  backend_unknown = -1,
};

hvl_gpu_backend_t backend_code(sycl::backend backend) noexcept;
const char* backend_name(int code) noexcept;

/// 1 to 6: a generation of GPUs, oldest first; 0: not known. Standard SYCL cannot be asked for it, so every
/// device is of an unknown one until its driver tells.
int architecture_code(const sycl::device& device);
const char* architecture_name(int code) noexcept;

int execution_unit_count(const sycl::device& device);

/// The parts that a device can be split into; 1 for one that cannot.
int tile_count(const sycl::device& device);

int max_work_group_size(const sycl::device& device);

} // namespace kestro::hvl::gpu
