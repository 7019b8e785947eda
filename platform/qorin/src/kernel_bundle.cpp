#include "limits.hpp"

#include <sycl/detail/work_group.hpp>
#include <sycl/kernel_bundle.hpp>

#include <algorithm>
#include <optional>

namespace sycl {

namespace detail {

class bundle_contents {
 public:
  context ctx;
  std::vector<device> devices;
  std::optional<std::vector<kernel_id>> ids; // none: all kernels of the program
};

namespace {

template <class T>
bool contains(const std::vector<T>& all, const T& one) {
  return std::find(all.begin(), all.end(), one) != all.end();
}

} // namespace

executable_bundle make_bundle(const context& ctx, const std::vector<device>& devices,
                              const std::vector<kernel_id>* ids) {
  if (devices.empty())
    throw exception(ctx, make_error_code(errc::invalid), "get_kernel_bundle: no devices");
  const std::vector<device> members = ctx.get_devices();
  std::vector<device> distinct;
  for (const device& d : devices) {
    if (!contains(members, d))
      throw exception(ctx, make_error_code(errc::invalid), "get_kernel_bundle: a device of another context");
    if (!contains(distinct, d))
      distinct.push_back(d);
  }
  return handle_access::make<executable_bundle>(std::make_shared<bundle_contents>(
      bundle_contents{ctx, std::move(distinct), ids != nullptr ? std::optional(*ids) : std::nullopt}));
}

} // namespace detail

using executable_bundle = detail::executable_bundle;

bool executable_bundle::empty() const noexcept {
  return state_->ids && state_->ids->empty();
}
backend executable_bundle::get_backend() const noexcept {
  return state_->ctx.get_backend();
}
context executable_bundle::get_context() const noexcept {
  return state_->ctx;
}
std::vector<device> executable_bundle::get_devices() const noexcept {
  return state_->devices;
}
bool executable_bundle::has_kernel(const kernel_id& id) const noexcept {
  return !state_->ids || detail::contains(*state_->ids, id);
}
bool executable_bundle::has_kernel(const kernel_id& id, const device& dev) const noexcept {
  return has_kernel(id) && detail::contains(state_->devices, dev);
}
kernel executable_bundle::get_kernel(const kernel_id& id) const {
  if (!has_kernel(id))
    throw exception(state_->ctx, make_error_code(errc::invalid), "get_kernel: the bundle has no such kernel");
  return {state_, id};
}

backend kernel::get_backend() const noexcept {
  return bundle_->ctx.get_backend();
}
context kernel::get_context() const {
  return bundle_->ctx;
}
executable_bundle kernel::get_kernel_bundle() const {
  return detail::handle_access::make<executable_bundle>(bundle_);
}

template <>
std::uint32_t kernel::get_info<info::kernel::num_args>() const {
  throw exception(make_error_code(errc::invalid),
                  "kernel: only kernels of other runtimes have counted arguments");
}
template <>
std::string kernel::get_info<info::kernel::attributes>() const {
  return {};
}

#define ANSWER(descriptor, type, ...)                                                                        \
  template <>                                                                                                \
  type kernel::get_info<info::kernel_device_specific::descriptor>(const device& dev) const {                 \
    if (!detail::contains(bundle_->devices, dev))                                                            \
      throw exception(make_error_code(errc::invalid), "kernel: the device is not one of its bundle's");      \
    return __VA_ARGS__;                                                                                      \
  }

ANSWER(work_group_size, std::size_t, dev.get_info<info::device::max_work_group_size>())
ANSWER(compile_work_group_size, range<3>, range<3>(0, 0, 0))
ANSWER(preferred_work_group_size_multiple, std::size_t, detail::sub_group_size)
ANSWER(private_mem_size, std::size_t, 0)
ANSWER(max_num_sub_groups, std::uint32_t, dev.get_info<info::device::max_num_sub_groups>())
ANSWER(compile_num_sub_groups, std::uint32_t, 0)
ANSWER(max_sub_group_size, std::uint32_t, detail::sub_group_size)
ANSWER(compile_sub_group_size, std::uint32_t, 0)

} // namespace sycl
