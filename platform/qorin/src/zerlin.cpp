// The emulated GPU's driver handles: pointers to the runtime's states.
#include "objects.hpp"

#include <sycl/backend/zerlin.hpp>

#include <algorithm>

namespace sycl::detail {

namespace {

using zerlin_interop = interop<backend::zerlin>;

template <class Handle, class Object>
Handle handle_of(const Object& object) {
  if (object.get_backend() != backend::zerlin)
    throw exception(make_error_code(errc::backend_mismatch), "the object is not one of the Zerlin backend");
  return reinterpret_cast<Handle>(handle_access::state(object).get());
}

template <class State, class Handle>
std::shared_ptr<State> state_of(Handle handle) {
  if (handle == nullptr)
    throw exception(make_error_code(errc::invalid), "a null Zerlin handle");
  return reinterpret_cast<State*>(handle)->shared_from_this();
}

void expect_no_handler(const async_handler& handler) {
  if (handler)
    throw exception(
        make_error_code(errc::feature_not_supported),
        "an object made from a Zerlin handle keeps the async handler of the handle's first owner");
}

} // namespace

zerlin::platform_handle zerlin_interop::get(const platform& p) {
  return handle_of<zerlin::platform_handle>(p);
}
zerlin::device_handle zerlin_interop::get(const device& d) {
  return handle_of<zerlin::device_handle>(d);
}
zerlin::context_handle zerlin_interop::get(const context& c) {
  return handle_of<zerlin::context_handle>(c);
}
zerlin::queue_handle zerlin_interop::get(const queue& q) {
  return handle_of<zerlin::queue_handle>(q);
}
zerlin::event_handle zerlin_interop::get(const event& e) {
  return handle_of<zerlin::event_handle>(e);
}

platform zerlin_interop::make_platform(zerlin::platform_handle native) {
  return handle_access::make<platform>(state_of<platform_state>(native));
}

device zerlin_interop::make_device(zerlin::device_handle native) {
  return handle_access::make<device>(state_of<device_state>(native));
}

context zerlin_interop::make_context(const zerlin::context_input& native, const async_handler& handler) {
  expect_no_handler(handler);
  const auto state = state_of<context_state>(native.native_handle);
  if (native.device_list != state->devices)
    throw exception(make_error_code(errc::invalid), "make_context: the devices are not those of the handle");
  return handle_access::make<context>(state);
}

queue zerlin_interop::make_queue(const zerlin::queue_input& native, const context& ctx,
                                 const async_handler& handler) {
  expect_no_handler(handler);
  const auto state = state_of<queue_state>(native.native_handle);
  if (state->where != native.dev || state->ctx != ctx)
    throw exception(make_error_code(errc::invalid),
                    "make_queue: the device or the context is not that of the handle");
  return handle_access::make<queue>(state);
}

event zerlin_interop::make_event(const zerlin::event_input& native, const context&) {
  return handle_access::make<event>(state_of<command>(native.native_handle));
}

} // namespace sycl::detail
