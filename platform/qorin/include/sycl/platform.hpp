// `platform`: the devices that one backend brings.
#pragma once

#include <sycl/detail/handle.hpp>
#include <sycl/exception.hpp>
#include <sycl/info.hpp>

namespace sycl {

namespace detail {
class platform_state;
class device_state;
class context_state;
class queue_state;
class command;
} // namespace detail

class QORIN_EXPORT platform : public detail::handle<platform, detail::platform_state> {
 public:
  /// The platform of the default device.
  platform();
  template <class DeviceSelector,
            class = std::enable_if_t<std::is_invocable_r_v<int, DeviceSelector, const device&>>>
  explicit platform(const DeviceSelector& selector);

  backend get_backend() const noexcept;
  std::vector<device> get_devices(info::device_type type = info::device_type::all) const;
  template <class Descriptor>
  typename Descriptor::return_type get_info() const;
  bool has(aspect asp) const;
  bool has_extension(const std::string& extension) const;

  static std::vector<platform> get_platforms();

 private:
  friend struct detail::handle_access;
  using handle::handle;
};

} // namespace sycl

template <>
struct std::hash<sycl::platform> : sycl::detail::handle_hash<sycl::platform> {};
