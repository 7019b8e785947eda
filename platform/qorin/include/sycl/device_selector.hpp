// Selectors: functions that score devices. The highest score wins, the first of equals; a negative score refuses.
#pragma once

#include <sycl/device.hpp>

#include <functional>

namespace sycl {

namespace detail {
struct QORIN_EXPORT default_selector {
  int operator()(const device& d) const;
};
struct QORIN_EXPORT cpu_selector {
  int operator()(const device& d) const;
};
struct QORIN_EXPORT gpu_selector {
  int operator()(const device& d) const;
};
struct QORIN_EXPORT accelerator_selector {
  int operator()(const device& d) const;
};
} // namespace detail

inline constexpr detail::default_selector default_selector_v{};
inline constexpr detail::cpu_selector cpu_selector_v{};
inline constexpr detail::gpu_selector gpu_selector_v{};
inline constexpr detail::accelerator_selector accelerator_selector_v{};

namespace detail {
/// The device the selector likes best; errc::runtime when it refuses them all.
QORIN_EXPORT device select_device(const std::function<int(const device&)>& score);
} // namespace detail

/// A selector of devices that have all the aspects wanted and none of those denied.
QORIN_EXPORT std::function<int(const device&)> aspect_selector(const std::vector<aspect>& wanted,
                                                               const std::vector<aspect>& denied = {});
template <class... Aspects, class = std::enable_if_t<(std::is_same_v<Aspects, aspect> && ...)>>
std::function<int(const device&)> aspect_selector(aspect first, Aspects... others) {
  return aspect_selector(std::vector<aspect>{first, others...});
}
template <aspect First, aspect... Others>
std::function<int(const device&)> aspect_selector() {
  return aspect_selector(std::vector<aspect>{First, Others...});
}

template <class DeviceSelector, class>
device::device(const DeviceSelector& selector) : device(detail::select_device(selector)) {}
template <class DeviceSelector, class>
platform::platform(const DeviceSelector& selector) : platform(device(selector).get_platform()) {}

} // namespace sycl
