// `context`: devices of one platform whose queues may share memory.
#pragma once

#include <sycl/device_selector.hpp>
#include <sycl/property_list.hpp>

namespace sycl {

class QORIN_EXPORT context : public detail::handle<context, detail::context_state>,
                             public property_interface<context> {
 public:
  explicit context(const property_list& properties = {});
  explicit context(async_handler handler, const property_list& properties = {});
  explicit context(const device& dev, const property_list& properties = {});
  explicit context(const device& dev, async_handler handler, const property_list& properties = {});
  explicit context(const platform& plt, const property_list& properties = {});
  explicit context(const platform& plt, async_handler handler, const property_list& properties = {});
  /// Throws errc::invalid for an empty list and for devices of several platforms.
  explicit context(const std::vector<device>& devices, const property_list& properties = {});
  explicit context(const std::vector<device>& devices, async_handler handler,
                   const property_list& properties = {});

  backend get_backend() const noexcept;
  platform get_platform() const;
  std::vector<device> get_devices() const;
  template <class Descriptor>
  typename Descriptor::return_type get_info() const;

 private:
  friend struct detail::handle_access;
  friend class property_interface<context>;
  using handle::handle;
  const property_list& properties() const noexcept;
};

#define QORIN_INFO_DECLARE(descriptor, type)                                                                 \
  template <>                                                                                                \
  QORIN_EXPORT type context::get_info<info::context::descriptor>() const;
QORIN_INFO_CONTEXT(QORIN_INFO_DECLARE)
#undef QORIN_INFO_DECLARE

} // namespace sycl

template <>
struct std::hash<sycl::context> : sycl::detail::handle_hash<sycl::context> {};
