// The device that tests trace: a GPU where there is one.
#pragma once

#include <string>

#include <sycl/sycl.hpp>

inline bool has_gpu() {
  return !sycl::device::get_devices(sycl::info::device_type::gpu).empty();
}

inline sycl::device traced_device() {
  return has_gpu() ? sycl::device(sycl::gpu_selector_v) : sycl::device(sycl::cpu_selector_v);
}

/// How a trace line ends that is its own.
inline std::string traced_device_label() {
  return has_gpu() ? " GPU0" : "";
}
