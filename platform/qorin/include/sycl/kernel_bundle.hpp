// Kernel bundles: the kernels of the program, which are compiled with it and hence executable from the start. Bundles
// in the other states have nothing to offer and do not compile.
#pragma once

#include <sycl/context.hpp>

namespace sycl {

enum class bundle_state : char { input, object, executable };

namespace detail {

class bundle_contents;

/// Where this is tells a kernel's name from others.
template <class KernelName>
inline constexpr char kernel_tag = 0;

template <class KernelName>
constexpr const char* kernel_text() {
  return __PRETTY_FUNCTION__;
}

} // namespace detail

/// Names a kernel, by the class given to parallel_for or single_task.
class kernel_id {
 public:
  const char* get_name() const noexcept { return name_; }

  friend bool operator==(const kernel_id& a, const kernel_id& b) noexcept { return a.tag_ == b.tag_; }
  friend bool operator!=(const kernel_id& a, const kernel_id& b) noexcept { return !(a == b); }

 private:
  template <class KernelName>
  friend kernel_id get_kernel_id();
  friend struct std::hash<kernel_id>;
  friend class handler;
  kernel_id(const void* tag, const char* name) : tag_(tag), name_(name) {}

  const void* tag_;
  const char* name_;
};

template <class KernelName>
kernel_id get_kernel_id() {
  return {&detail::kernel_tag<KernelName>, detail::kernel_text<KernelName>()};
}

namespace info {
namespace kernel {
#define QORIN_INFO_KERNEL(X)                                                                                 \
  X(num_args, std::uint32_t)                                                                                 \
  X(attributes, std::string)
#define QORIN_INFO_DECLARE(descriptor, type)                                                                 \
  struct descriptor {                                                                                        \
    using return_type = type;                                                                                \
  };
QORIN_INFO_KERNEL(QORIN_INFO_DECLARE)
} // namespace kernel
namespace kernel_device_specific {
#define QORIN_INFO_KERNEL_DEVICE(X)                                                                          \
  X(work_group_size, std::size_t)                                                                            \
  X(compile_work_group_size, range<3>)                                                                       \
  X(preferred_work_group_size_multiple, std::size_t)                                                         \
  X(private_mem_size, std::size_t)                                                                           \
  X(max_num_sub_groups, std::uint32_t)                                                                       \
  X(compile_num_sub_groups, std::uint32_t)                                                                   \
  X(max_sub_group_size, std::uint32_t)                                                                       \
  X(compile_sub_group_size, std::uint32_t)
QORIN_INFO_KERNEL_DEVICE(QORIN_INFO_DECLARE)
#undef QORIN_INFO_DECLARE
} // namespace kernel_device_specific
} // namespace info

template <bundle_state State>
class kernel_bundle;

/// A kernel of a bundle, to be asked about; it is launched by its name.
class QORIN_EXPORT kernel {
 public:
  backend get_backend() const noexcept;
  context get_context() const;
  kernel_bundle<bundle_state::executable> get_kernel_bundle() const;
  template <class Descriptor>
  typename Descriptor::return_type get_info() const;
  /// Throws errc::invalid unless the device is one of the bundle's.
  template <class Descriptor>
  typename Descriptor::return_type get_info(const device& dev) const;

  friend bool operator==(const kernel& a, const kernel& b) noexcept {
    return a.bundle_ == b.bundle_ && a.id_ == b.id_;
  }
  friend bool operator!=(const kernel& a, const kernel& b) noexcept { return !(a == b); }

 private:
  friend class kernel_bundle<bundle_state::executable>;
  friend struct std::hash<kernel>;
  kernel(std::shared_ptr<detail::bundle_contents> bundle, const kernel_id& id)
      : bundle_(std::move(bundle)), id_(id) {}

  std::shared_ptr<detail::bundle_contents> bundle_;
  kernel_id id_;
};

#define QORIN_INFO_DECLARE(descriptor, type)                                                                 \
  template <>                                                                                                \
  QORIN_EXPORT type kernel::get_info<info::kernel::descriptor>() const;
QORIN_INFO_KERNEL(QORIN_INFO_DECLARE)
#undef QORIN_INFO_DECLARE
#define QORIN_INFO_DECLARE(descriptor, type)                                                                 \
  template <>                                                                                                \
  QORIN_EXPORT type kernel::get_info<info::kernel_device_specific::descriptor>(const device&) const;
QORIN_INFO_KERNEL_DEVICE(QORIN_INFO_DECLARE)
#undef QORIN_INFO_DECLARE

/// Either all kernels of the program or those of a list.
template <>
class QORIN_EXPORT kernel_bundle<bundle_state::executable>
    : public detail::handle<kernel_bundle<bundle_state::executable>, detail::bundle_contents> {
 public:
  bool empty() const noexcept;
  backend get_backend() const noexcept;
  context get_context() const noexcept;
  std::vector<device> get_devices() const noexcept;
  bool has_kernel(const kernel_id& id) const noexcept;
  bool has_kernel(const kernel_id& id, const device& dev) const noexcept;
  /// Throws errc::invalid when the bundle has no such kernel.
  kernel get_kernel(const kernel_id& id) const;
  template <class KernelName>
  bool has_kernel() const noexcept {
    return has_kernel(get_kernel_id<KernelName>());
  }
  template <class KernelName>
  bool has_kernel(const device& dev) const noexcept {
    return has_kernel(get_kernel_id<KernelName>(), dev);
  }
  template <class KernelName>
  kernel get_kernel() const {
    return get_kernel(get_kernel_id<KernelName>());
  }

 private:
  friend struct detail::handle_access;
  using handle::handle;
};

namespace detail {
using executable_bundle = kernel_bundle<bundle_state::executable>;
/// The kernels of `ids`, or all of them. Throws errc::invalid for no devices and for devices of another context.
QORIN_EXPORT executable_bundle make_bundle(const context& ctx, const std::vector<device>& devices,
                                           const std::vector<kernel_id>* ids = nullptr);
} // namespace detail

template <bundle_state State>
kernel_bundle<State> get_kernel_bundle(const context& ctx, const std::vector<device>& devices) {
  return detail::make_bundle(ctx, devices);
}
template <bundle_state State>
kernel_bundle<State> get_kernel_bundle(const context& ctx, const std::vector<device>& devices,
                                       const std::vector<kernel_id>& ids) {
  return detail::make_bundle(ctx, devices, &ids);
}
template <bundle_state State>
kernel_bundle<State> get_kernel_bundle(const context& ctx) {
  return detail::make_bundle(ctx, ctx.get_devices());
}
template <bundle_state State>
kernel_bundle<State> get_kernel_bundle(const context& ctx, const std::vector<kernel_id>& ids) {
  return detail::make_bundle(ctx, ctx.get_devices(), &ids);
}
template <class KernelName, bundle_state State>
kernel_bundle<State> get_kernel_bundle(const context& ctx) {
  return get_kernel_bundle<State>(ctx, std::vector{get_kernel_id<KernelName>()});
}
template <class KernelName, bundle_state State>
kernel_bundle<State> get_kernel_bundle(const context& ctx, const std::vector<device>& devices) {
  return get_kernel_bundle<State>(ctx, devices, std::vector{get_kernel_id<KernelName>()});
}

} // namespace sycl

template <>
struct std::hash<sycl::kernel_id> {
  std::size_t operator()(const sycl::kernel_id& id) const noexcept {
    return std::hash<const void*>{}(id.tag_);
  }
};
template <>
struct std::hash<sycl::kernel> {
  std::size_t operator()(const sycl::kernel& k) const noexcept { return std::hash<sycl::kernel_id>{}(k.id_); }
};
template <>
struct std::hash<sycl::kernel_bundle<sycl::bundle_state::executable>>
    : sycl::detail::handle_hash<sycl::kernel_bundle<sycl::bundle_state::executable>> {};
