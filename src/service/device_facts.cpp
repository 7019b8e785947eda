#include "service/device_facts.hpp"

#include <algorithm>
#include <iterator>

#include "service/portability.hpp"

namespace kestro::hvl::gpu {

hvl_gpu_backend_t backend_code([[maybe_unused]] sycl::backend backend) noexcept {
#ifdef KESTRO_HVL_HAS_OPENCL
  if (backend == portability::opencl)
    return backend_opencl;
#endif
#ifdef KESTRO_HVL_HAS_ZERLIN
  if (backend == portability::zerlin)
    return backend_zerlin;
#endif
  return backend_unknown;
}

const char* backend_name(int code) noexcept {
  switch (code) {
  case backend_opencl:
    return "OpenCL";
  case backend_zerlin:
    return "Zerlin";
  default:
    return "Unknown_backend";
  }
}

int architecture_code(const sycl::device&) {
  return 0;
}

const char* architecture_name(int code) noexcept {
  constexpr const char* names[] = {"Aster_GPU",  "Birch_GPU", "Cedar_GPU",
                                   "Dahlia_GPU", "Elder_GPU", "Fern_GPU"};
  return code >= 1 && code <= static_cast<int>(std::size(names)) ? names[code - 1] : "Unknown_GPU";
}

int execution_unit_count(const sycl::device& device) {
  return static_cast<int>(device.get_info<sycl::info::device::max_compute_units>());
}

int tile_count(const sycl::device& device) {
  return std::max(1, static_cast<int>(device.get_info<sycl::info::device::partition_max_sub_devices>()));
}

int max_work_group_size(const sycl::device& device) {
  return static_cast<int>(device.get_info<sycl::info::device::max_work_group_size>());
}

} // namespace kestro::hvl::gpu
