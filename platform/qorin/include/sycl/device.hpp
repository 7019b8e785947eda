// `device`: one thing that runs commands. The runtime has a CPU device and an emulated GPU; both run on the
// host's threads. QORIN_ACCELERATOR=1 in the environment adds an emulated accelerator, neither CPU nor GPU.
#pragma once

#include <sycl/platform.hpp>

namespace sycl {

class QORIN_EXPORT device : public detail::handle<device, detail::device_state> {
 public:
  /// The device that default_selector_v picks.
  device();
  template <class DeviceSelector,
            class = std::enable_if_t<std::is_invocable_r_v<int, DeviceSelector, const device&>>>
  explicit device(const DeviceSelector& selector);

  backend get_backend() const noexcept;
  bool is_cpu() const;
  bool is_gpu() const;
  bool is_accelerator() const;
  platform get_platform() const;
  template <class Descriptor>
  typename Descriptor::return_type get_info() const;
  bool has(aspect asp) const;
  bool has_extension(const std::string& extension) const;

  static std::vector<device> get_devices(info::device_type type = info::device_type::all);

 private:
  friend struct detail::handle_access;
  using handle::handle;
};

#define QORIN_INFO_DECLARE(descriptor, type)                                                                 \
  template <>                                                                                                \
  QORIN_EXPORT type device::get_info<info::device::descriptor>() const;
QORIN_INFO_DEVICE(QORIN_INFO_DECLARE)
#undef QORIN_INFO_DECLARE
template <>
QORIN_EXPORT id<1> device::get_info<info::device::max_work_item_sizes<1>>() const;
template <>
QORIN_EXPORT id<2> device::get_info<info::device::max_work_item_sizes<2>>() const;
template <>
QORIN_EXPORT id<3> device::get_info<info::device::max_work_item_sizes<3>>() const;

#define QORIN_INFO_DECLARE(descriptor, type)                                                                 \
  template <>                                                                                                \
  QORIN_EXPORT type platform::get_info<info::platform::descriptor>() const;
QORIN_INFO_PLATFORM(QORIN_INFO_DECLARE)
#undef QORIN_INFO_DECLARE

} // namespace sycl

template <>
struct std::hash<sycl::device> : sycl::detail::handle_hash<sycl::device> {};
