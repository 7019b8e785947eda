// Platforms, devices and contexts made from OpenCL's.
#include "opencl_native.hpp"

#include <map>

namespace sycl {

namespace detail::opencl {

namespace {

class category final : public std::error_category {
 public:
  const char* name() const noexcept override { return "opencl"; }
  std::string message(int code) const override { return "OpenCL error " + std::to_string(code); }
};

/// Objects seen so far. Never destroyed: handles to them may outlive any order of destruction at exit.
struct registry {
  std::recursive_mutex mutex; // a platform makes its devices, and a device its platform
  std::map<cl_platform_id, std::shared_ptr<platform_state>> platforms;
  std::map<cl_device_id, std::shared_ptr<device_state>> devices;
};
registry& known() {
  static auto& one = *new registry;
  return one;
}

info::device_type type_of(cl_device_id native) {
  const auto type = query<cl_device_type>(clGetDeviceInfo, native, CL_DEVICE_TYPE);
  if ((type & CL_DEVICE_TYPE_CPU) != 0)
    return info::device_type::cpu;
  if ((type & CL_DEVICE_TYPE_GPU) != 0)
    return info::device_type::gpu;
  if ((type & CL_DEVICE_TYPE_ACCELERATOR) != 0)
    return info::device_type::accelerator;
  return info::device_type::custom;
}

aspect aspect_of(info::device_type type) {
  switch (type) {
  case info::device_type::cpu:
    return aspect::cpu;
  case info::device_type::gpu:
    return aspect::gpu;
  case info::device_type::accelerator:
    return aspect::accelerator;
  default:
    return aspect::custom;
  }
}

std::shared_ptr<device_state> add_device(cl_device_id native,
                                         const std::shared_ptr<platform_state>& platform) {
  auto& state = known().devices[native];
  if (!state) {
    auto made = std::make_shared<device_state>();
    made->type = type_of(native);
    made->name = query_text(clGetDeviceInfo, native, CL_DEVICE_NAME) + " (host threads)";
    made->vendor = query_text(clGetDeviceInfo, native, CL_DEVICE_VENDOR);
    made->driver_version = query_text(clGetDeviceInfo, native, CL_DRIVER_VERSION);
    made->vendor_id = query<cl_uint>(clGetDeviceInfo, native, CL_DEVICE_VENDOR_ID);
    made->compute_units = query<cl_uint>(clGetDeviceInfo, native, CL_DEVICE_MAX_COMPUTE_UNITS);
    made->work_group_size = std::min(made->work_group_size,
                                     query<size_t>(clGetDeviceInfo, native, CL_DEVICE_MAX_WORK_GROUP_SIZE));
    made->aspects = host_thread_aspects({aspect_of(made->type)});
    made->platform = platform;
    made->native = retained(native, clRetainDevice, clReleaseDevice);
    state = std::move(made);
  }
  return state;
}

} // namespace

std::exception_ptr error(cl_int status, const char* call) {
  return std::make_exception_ptr(
      exception(status, error_category_for<backend::opencl>(), std::string("OpenCL: ") + call));
}

void check(cl_int status, const char* call) {
  if (status != CL_SUCCESS)
    std::rethrow_exception(error(status, call));
}

void expect_opencl(backend kind) {
  if (kind != backend::opencl)
    throw exception(make_error_code(errc::backend_mismatch), "the object is not one of the OpenCL backend");
}

std::shared_ptr<platform_state> platform_of(cl_platform_id native) {
  const std::lock_guard lock(known().mutex);
  auto& state = known().platforms[native];
  if (!state) {
    auto made = std::make_shared<platform_state>();
    made->kind = backend::opencl;
    made->name = query_text(clGetPlatformInfo, native, CL_PLATFORM_NAME);
    made->vendor = query_text(clGetPlatformInfo, native, CL_PLATFORM_VENDOR);
    made->version = query_text(clGetPlatformInfo, native, CL_PLATFORM_VERSION);
    made->native = std::shared_ptr<void>(native, [](void*) {}); // platforms are not counted
    cl_uint count = 0;
    check(clGetDeviceIDs(native, CL_DEVICE_TYPE_ALL, 0, nullptr, &count), "clGetDeviceIDs");
    std::vector<cl_device_id> devices(count);
    check(clGetDeviceIDs(native, CL_DEVICE_TYPE_ALL, count, devices.data(), nullptr), "clGetDeviceIDs");
    for (cl_device_id d : devices)
      made->devices.push_back(add_device(d, made));
    state = std::move(made);
  }
  return state;
}

std::shared_ptr<device_state> device_of(cl_device_id native) {
  const auto platform = platform_of(query<cl_platform_id>(clGetDeviceInfo, native, CL_DEVICE_PLATFORM));
  const std::lock_guard lock(known().mutex);
  return add_device(native, platform); // new only for a sub-device
}

} // namespace detail::opencl

template <>
const std::error_category& error_category_for<backend::opencl>() noexcept {
  static const auto& one = *new detail::opencl::category;
  return one;
}

namespace detail {

using opencl_interop = interop<backend::opencl>;

cl_platform_id opencl_interop::get(const platform& p) {
  opencl::expect_opencl(p.get_backend());
  return static_cast<cl_platform_id>(handle_access::state(p)->native.get());
}

cl_device_id opencl_interop::get(const device& d) {
  opencl::expect_opencl(d.get_backend());
  const auto native = static_cast<cl_device_id>(handle_access::state(d)->native.get());
  opencl::check(clRetainDevice(native), "clRetainDevice");
  return native;
}

cl_context opencl_interop::get(const context& c) {
  const auto native = static_cast<cl_context>(handle_access::state(c)->native.get());
  if (native == nullptr)
    throw exception(make_error_code(errc::backend_mismatch),
                    "the context was not made from an OpenCL context");
  opencl::check(clRetainContext(native), "clRetainContext");
  return native;
}

platform opencl_interop::make_platform(cl_platform_id native) {
  return handle_access::make<platform>(opencl::platform_of(native));
}

device opencl_interop::make_device(cl_device_id native) {
  return handle_access::make<device>(opencl::device_of(native));
}

context opencl_interop::make_context(cl_context native, const async_handler& handler) {
  auto state = std::make_shared<context_state>();
  for (cl_device_id d :
       opencl::query_all<std::vector<cl_device_id>>(clGetContextInfo, native, CL_CONTEXT_DEVICES))
    state->devices.push_back(make_device(d));
  state->handler = handler;
  state->native = opencl::retained(native, clRetainContext, clReleaseContext);
  return handle_access::make<context>(std::move(state));
}

} // namespace detail
} // namespace sycl
