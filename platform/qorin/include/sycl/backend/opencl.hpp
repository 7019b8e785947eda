// SYCL objects made from OpenCL objects, and OpenCL objects of SYCL ones.
//
// A queue made from a cl_command_queue shares its order: a SYCL command starts when the OpenCL commands enqueued
// before it are complete, and OpenCL commands enqueued after it wait for it, unless the OpenCL queue is an
// out-of-order one. The SYCL commands themselves, host tasks and kernels, run on the host's threads, and USM of such
// a queue is host memory; memory of clSVMAlloc may be used wherever the OpenCL device shares the host's memory.
//
// A SYCL object retains the OpenCL object it was made from and releases it at its end. get_native retains what it
// returns, and the caller releases it. There are no native objects for buffers, images, kernels and kernel bundles.
#pragma once

#ifndef CL_TARGET_OPENCL_VERSION
#define CL_TARGET_OPENCL_VERSION 300
#endif
#include <CL/cl.h>

#include <sycl/backend.hpp>

#include <vector>

namespace sycl {

namespace detail {

template <class T>
struct opencl_object;
template <>
struct opencl_object<platform> {
  using type = cl_platform_id;
};
template <>
struct opencl_object<device> {
  using type = cl_device_id;
};
template <>
struct opencl_object<context> {
  using type = cl_context;
};
template <>
struct opencl_object<queue> {
  using type = cl_command_queue;
};
/// An event of SYCL may be several of OpenCL, all of which it waits for.
template <>
struct opencl_object<event> {
  using type = std::vector<cl_event>;
};

} // namespace detail

template <>
class backend_traits<backend::opencl> {
 public:
  template <class T>
  using input_type = typename detail::opencl_object<T>::type;
  template <class T>
  using return_type = typename detail::opencl_object<T>::type;
  using errc = cl_int;
};

template <>
QORIN_EXPORT const std::error_category& error_category_for<backend::opencl>() noexcept;

namespace detail {

template <>
struct interop<backend::opencl> {
  static QORIN_EXPORT cl_platform_id get(const platform& p);
  static QORIN_EXPORT cl_device_id get(const device& d);
  static QORIN_EXPORT cl_context get(const context& c);
  static QORIN_EXPORT cl_command_queue get(const queue& q);
  /// One user event, complete when the command is, or the events that `e` was made from.
  static QORIN_EXPORT std::vector<cl_event> get(const event& e);

  static QORIN_EXPORT platform make_platform(cl_platform_id native);
  static QORIN_EXPORT device make_device(cl_device_id native);
  static QORIN_EXPORT context make_context(cl_context native, const async_handler& handler);
  /// In order and profiled as the native queue is.
  static QORIN_EXPORT queue make_queue(cl_command_queue native, const context& ctx,
                                       const async_handler& handler);
  /// Errors of the native events go to the context's handler.
  static QORIN_EXPORT event make_event(const std::vector<cl_event>& native, const context& ctx);
};

} // namespace detail
} // namespace sycl
