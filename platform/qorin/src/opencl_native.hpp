// OpenCL's objects and errors in the runtime's own terms.
#pragma once

#include "objects.hpp"

#include <sycl/backend/opencl.hpp>

namespace sycl::detail::opencl {

/// Throws an exception with OpenCL's code unless `status` is CL_SUCCESS.
void check(cl_int status, const char* call);
/// The same exception, to be kept.
std::exception_ptr error(cl_int status, const char* call);

/// What is retained while the pointer or a copy of it lives.
template <class Object>
std::shared_ptr<void> retained(Object object, cl_int (*retain)(Object), cl_int (*release)(Object)) {
  check(retain(object), "retain");
  return std::shared_ptr<void>(object, [release](void* o) { release(static_cast<Object>(o)); });
}

/// Queries of one fixed-size value and of a list or text.
template <class Value, class Object>
Value query(cl_int (*get)(Object, cl_uint, size_t, void*, size_t*), Object object, cl_uint key) {
  Value value{};
  check(get(object, key, sizeof value, &value, nullptr), "info");
  return value;
}
template <class Container, class Object>
Container query_all(cl_int (*get)(Object, cl_uint, size_t, void*, size_t*), Object object, cl_uint key) {
  size_t bytes = 0;
  check(get(object, key, 0, nullptr, &bytes), "info");
  Container all(bytes / sizeof(typename Container::value_type), typename Container::value_type{});
  check(get(object, key, bytes, all.data(), nullptr), "info");
  return all;
}
template <class Object>
std::string query_text(cl_int (*get)(Object, cl_uint, size_t, void*, size_t*), Object object, cl_uint key) {
  std::string text = query_all<std::string>(get, object, key);
  text.resize(text.find('\0') == std::string::npos ? text.size() : text.find('\0'));
  return text;
}

/// The one state for a native object; made at first sight, kept for the life of the process.
std::shared_ptr<platform_state> platform_of(cl_platform_id native);
std::shared_ptr<device_state> device_of(cl_device_id native);

/// Throws errc::backend_mismatch unless `kind` is OpenCL's.
void expect_opencl(backend kind);

} // namespace sycl::detail::opencl
