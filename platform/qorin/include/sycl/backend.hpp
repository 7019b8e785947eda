// Interoperation with the objects of other runtimes: what is common to all backends.
//
// A program includes the header of the backend it wants, sycl/backend/opencl.hpp or sycl/backend/zerlin.hpp, which
// says what the native objects are. What a backend has no native object for does not compile.
#pragma once

#include <sycl/queue.hpp>

#define SYCL_BACKEND_OPENCL 1
#define SYCL_BACKEND_ZERLIN 1

namespace sycl {

/// input_type<T> is what a SYCL object T is made from, return_type<T> what get_native gives for it; each backend
/// specialises it.
template <backend Backend>
class backend_traits;

template <backend Backend, class T>
using backend_input_t = typename backend_traits<Backend>::template input_type<T>;
template <backend Backend, class T>
using backend_return_t = typename backend_traits<Backend>::template return_type<T>;

namespace detail {
/// The functions below, for one backend: get(object) and make_...(input, ...).
template <backend Backend>
struct interop;
} // namespace detail

/// The native object behind `object`. Throws errc::backend_mismatch when it belongs to another backend.
template <backend Backend, class T>
backend_return_t<Backend, T> get_native(const T& object) {
  return detail::interop<Backend>::get(object);
}

template <backend Backend>
platform make_platform(const backend_input_t<Backend, platform>& native) {
  return detail::interop<Backend>::make_platform(native);
}
template <backend Backend>
device make_device(const backend_input_t<Backend, device>& native) {
  return detail::interop<Backend>::make_device(native);
}
template <backend Backend>
context make_context(const backend_input_t<Backend, context>& native, const async_handler& handler = {}) {
  return detail::interop<Backend>::make_context(native, handler);
}
/// Throws errc::invalid when the native queue is not one of the context.
template <backend Backend>
queue make_queue(const backend_input_t<Backend, queue>& native, const context& ctx,
                 const async_handler& handler = {}) {
  return detail::interop<Backend>::make_queue(native, ctx, handler);
}
template <backend Backend>
event make_event(const backend_input_t<Backend, event>& native, const context& ctx) {
  return detail::interop<Backend>::make_event(native, ctx);
}

/// The errors of a backend's own calls, whose exceptions carry the native code.
template <backend Backend>
const std::error_category& error_category_for() noexcept;

template <backend Backend>
typename backend_traits<Backend>::template return_type<queue> interop_handle::get_native_queue() const {
  return get_native<Backend>(detail::handle_access::make<queue>(queue_));
}
template <backend Backend>
typename backend_traits<Backend>::template return_type<device> interop_handle::get_native_device() const {
  return get_native<Backend>(detail::handle_access::make<queue>(queue_).get_device());
}
template <backend Backend>
typename backend_traits<Backend>::template return_type<context> interop_handle::get_native_context() const {
  return get_native<Backend>(detail::handle_access::make<queue>(queue_).get_context());
}

} // namespace sycl
