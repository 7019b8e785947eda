#pragma once

#include <kestro/hvl/exceptions.hpp>

namespace kestro::hvl::rng::detail {

/// The kinds of device that have a backend.
enum class device_type : int {
  cpu = 1, // a host task calls the stream library
  gpu = 2, // a kernel generates from a copy of the state
};

/// The CPU test comes first. Any other device throws `unsupported_device`, naming `function`.
inline device_type device_type_of(const sycl::device& device, const char* function) {
  if (device.is_cpu())
    return device_type::cpu;
  if (device.is_gpu())
    return device_type::gpu;
  throw unsupported_device("rng", function, device);
}

} // namespace kestro::hvl::rng::detail
