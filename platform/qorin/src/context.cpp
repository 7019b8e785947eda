#include "objects.hpp"

namespace sycl {

context::context(const property_list& properties) : context(device(), async_handler(), properties) {}
context::context(async_handler handler, const property_list& properties)
    : context(device(), std::move(handler), properties) {}
context::context(const device& dev, const property_list& properties)
    : context(dev, async_handler(), properties) {}
context::context(const device& dev, async_handler handler, const property_list& properties)
    : context(std::vector<device>{dev}, std::move(handler), properties) {}
context::context(const platform& plt, const property_list& properties)
    : context(plt, async_handler(), properties) {}
context::context(const platform& plt, async_handler handler, const property_list& properties)
    : context(plt.get_devices(), std::move(handler), properties) {}
context::context(const std::vector<device>& devices, const property_list& properties)
    : context(devices, async_handler(), properties) {}

context::context(const std::vector<device>& devices, async_handler handler, const property_list& properties) {
  if (devices.empty())
    throw exception(make_error_code(errc::invalid), "context: no devices");
  for (const device& d : devices)
    if (d.get_platform() != devices.front().get_platform())
      throw exception(make_error_code(errc::invalid), "context: devices of several platforms");
  state_ = std::make_shared<detail::context_state>();
  state_->devices = devices;
  state_->handler = std::move(handler);
  state_->properties = properties;
}

backend context::get_backend() const noexcept {
  return state_->devices.front().get_backend();
}
platform context::get_platform() const {
  return state_->devices.front().get_platform();
}
std::vector<device> context::get_devices() const {
  return state_->devices;
}
const property_list& context::properties() const noexcept {
  return state_->properties;
}

#define ANSWER(descriptor, type, ...)                                                                        \
  template <>                                                                                                \
  type context::get_info<info::context::descriptor>() const {                                                \
    return __VA_ARGS__;                                                                                      \
  }
#define ANSWER_FOR_DEVICES(descriptor, type)                                                                 \
  ANSWER(descriptor, type, state_->devices.front().get_info<info::device::descriptor>())

ANSWER(platform, sycl::platform, get_platform())
ANSWER(devices, std::vector<sycl::device>, get_devices())
ANSWER_FOR_DEVICES(atomic_memory_order_capabilities, std::vector<memory_order>)
ANSWER_FOR_DEVICES(atomic_fence_order_capabilities, std::vector<memory_order>)
ANSWER_FOR_DEVICES(atomic_memory_scope_capabilities, std::vector<memory_scope>)
ANSWER_FOR_DEVICES(atomic_fence_scope_capabilities, std::vector<memory_scope>)

} // namespace sycl
