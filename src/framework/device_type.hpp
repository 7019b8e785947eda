#pragma once

#include <cstdlib>

#include <kestro/hvl/exceptions.hpp>

namespace kestro::hvl::rng::detail {

/// The kinds of device that have a backend.
enum class device_type : int {
  cpu = 1, // a host task calls the stream library
  gpu = 2, // a kernel generates from a copy of the state
};

#ifdef KESTRO_HVL_TEST_KERNELS
/// A test build has kernels run on CPU devices too when HVL_TEST_KERNELS is in the environment: for machines without a GPU.
inline const bool kernels_everywhere = std::getenv("HVL_TEST_KERNELS") != nullptr;
#else
inline constexpr bool kernels_everywhere = false;
#endif

/// The CPU test comes first. Any other device throws `unsupported_device`, naming `function`.
inline device_type device_type_of(const sycl::device& device, const char* function) {
  if (device.is_cpu() && !kernels_everywhere)
    return device_type::cpu;
  if (device.is_cpu() || device.is_gpu())
    return device_type::gpu;
  throw unsupported_device("rng", function, device);
}

} // namespace kestro::hvl::rng::detail
