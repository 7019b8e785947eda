// How users name devices.
#pragma once

#include <sycl/sycl.hpp>

#include <charconv>
#include <optional>
#include <string>
#include <vector>

namespace hvl_rng {

inline const char* kind_of(const sycl::device& device) {
  return device.is_cpu()           ? "cpu"
         : device.is_gpu()         ? "gpu"
         : device.is_accelerator() ? "accelerator"
                                   : "other";
}

// "cpu", "gpu", or a place among the devices.
inline std::optional<sycl::device> device_named(const std::string& name) {
  const std::vector<sycl::device> devices = sycl::device::get_devices();
  std::size_t number = devices.size();
  const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), number);
  if (error == std::errc() && end == name.data() + name.size() && number < devices.size())
    return devices[number];
  for (const sycl::device& device : devices)
    if (name == kind_of(device) && (device.is_cpu() || device.is_gpu()))
      return device;
  return std::nullopt;
}

} // namespace hvl_rng
