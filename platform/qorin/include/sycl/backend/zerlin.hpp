// SYCL objects of the emulated GPU from its driver's handles, and those handles from SYCL objects.
//
// The driver's objects are the runtime's own, so a handle is an opaque pointer to one. It does not own: get_native
// gives a handle that is good as long as some SYCL object refers to the same driver object, and what make_... makes
// from it is one more such SYCL object, equal to the others.
#pragma once

#include <sycl/backend.hpp>

#include <vector>

namespace sycl {

namespace zerlin {

using platform_handle = struct platform_object*;
using device_handle = struct device_object*;
using context_handle = struct context_object*;
using queue_handle = struct queue_object*;
using event_handle = struct event_object*;

/// Who destroys the driver's object. `keep`: whoever made it, not the SYCL object that is made from its handle.
enum class ownership { keep };

struct context_input {
  context_handle native_handle = nullptr;
  std::vector<device> device_list;
  ownership owner = ownership::keep;
};
struct queue_input {
  queue_handle native_handle = nullptr;
  device dev;
  ownership owner = ownership::keep;
};
struct event_input {
  event_handle native_handle = nullptr;
  ownership owner = ownership::keep;
};

} // namespace zerlin

namespace detail {

template <class T, class Handle, class Input = Handle>
struct zerlin_types {
  using handle = Handle;
  using input = Input;
};
template <class T>
struct zerlin_object;
template <>
struct zerlin_object<platform> : zerlin_types<platform, zerlin::platform_handle> {};
template <>
struct zerlin_object<device> : zerlin_types<device, zerlin::device_handle> {};
template <>
struct zerlin_object<context> : zerlin_types<context, zerlin::context_handle, zerlin::context_input> {};
template <>
struct zerlin_object<queue> : zerlin_types<queue, zerlin::queue_handle, zerlin::queue_input> {};
template <>
struct zerlin_object<event> : zerlin_types<event, zerlin::event_handle, zerlin::event_input> {};

} // namespace detail

template <>
class backend_traits<backend::zerlin> {
 public:
  template <class T>
  using input_type = typename detail::zerlin_object<T>::input;
  template <class T>
  using return_type = typename detail::zerlin_object<T>::handle;
};

namespace detail {

/// make_... throw errc::invalid for a null handle and for devices that are not the object's own, and
/// errc::feature_not_supported for an async handler: errors go where the driver object's first owner wants them.
template <>
struct interop<backend::zerlin> {
  static QORIN_EXPORT zerlin::platform_handle get(const platform& p);
  static QORIN_EXPORT zerlin::device_handle get(const device& d);
  static QORIN_EXPORT zerlin::context_handle get(const context& c);
  static QORIN_EXPORT zerlin::queue_handle get(const queue& q);
  static QORIN_EXPORT zerlin::event_handle get(const event& e);

  static QORIN_EXPORT platform make_platform(zerlin::platform_handle native);
  static QORIN_EXPORT device make_device(zerlin::device_handle native);
  static QORIN_EXPORT context make_context(const zerlin::context_input& native, const async_handler& handler);
  static QORIN_EXPORT queue make_queue(const zerlin::queue_input& native, const context& ctx,
                                       const async_handler& handler);
  static QORIN_EXPORT event make_event(const zerlin::event_input& native, const context& ctx);
};

} // namespace detail
} // namespace sycl
