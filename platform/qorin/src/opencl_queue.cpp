// Queues and events shared with OpenCL.
#include "opencl_completion.hpp"

namespace sycl::detail {

namespace opencl {

namespace {

/// OpenCL's events for a command: the events that it waits for, or a user event that it completes.
class opencl_event final : public native_event {
 public:
  explicit opencl_event(const std::vector<cl_event>& events) {
    for (cl_event e : events)
      events_.push_back(retained(e, clRetainEvent, clReleaseEvent));
  }
  explicit opencl_event(cl_context ctx) : is_user_event_(true) {
    cl_int status = CL_SUCCESS;
    const cl_event user = clCreateUserEvent(ctx, &status);
    check(status, "clCreateUserEvent");
    events_.emplace_back(user, [](void* e) { clReleaseEvent(static_cast<cl_event>(e)); });
  }

  void completed() noexcept override {
    if (is_user_event_)
      clSetUserEventStatus(front(), CL_COMPLETE);
  }

  cl_event front() const { return static_cast<cl_event>(events_.front().get()); }
  /// Retained for the caller.
  std::vector<cl_event> all() const {
    std::vector<cl_event> result;
    for (const auto& e : events_) {
      check(clRetainEvent(static_cast<cl_event>(e.get())), "clRetainEvent");
      result.push_back(static_cast<cl_event>(e.get()));
    }
    return result;
  }

 private:
  std::vector<std::shared_ptr<void>> events_;
  bool is_user_event_ = false;
};

std::shared_ptr<command> external_command(std::shared_ptr<error_sink> errors) {
  auto c = std::make_shared<command>(backend::opencl, std::move(errors));
  c->make_external();
  return c;
}

class opencl_queue final : public native_queue {
 public:
  opencl_queue(cl_command_queue native, cl_context ctx, bool in_order)
      : queue_(retained(native, clRetainCommandQueue, clReleaseCommandQueue)), context_(ctx),
        in_order_(in_order) {}

  cl_command_queue get() const { return static_cast<cl_command_queue>(queue_.get()); }

  /// An in-order queue gets a marker, which ends when what was enqueued before has ended and for which the command
  /// waits, and a barrier, at which what is enqueued later waits for the command.
  void enter(command& c, const std::shared_ptr<error_sink>& errors) override {
    const auto here = std::make_shared<opencl_event>(context_);
    if (in_order_) {
      try {
        enter_in_order(c, here->front(), errors);
      } catch (...) {
        here->completed();
        throw;
      }
    }
    c.set_native(here);
  }

 private:
  void enter_in_order(command& c, cl_event here, const std::shared_ptr<error_sink>& errors) {
    cl_event raw_marker = nullptr;
    check(clEnqueueMarkerWithWaitList(get(), 0, nullptr, &raw_marker), "clEnqueueMarkerWithWaitList");
    const opencl_event marker({raw_marker});
    clReleaseEvent(raw_marker);
    check(clEnqueueBarrierWithWaitList(get(), 1, &here, nullptr), "clEnqueueBarrierWithWaitList");
    check(clFlush(get()), "clFlush");
    if (query<cl_int>(clGetEventInfo, raw_marker, CL_EVENT_COMMAND_EXECUTION_STATUS) == CL_COMPLETE)
      return;
    const auto before = external_command(errors);
    end_after({raw_marker}, before);
    c.add_dependency(before);
  }

  const std::shared_ptr<void> queue_;
  const cl_context context_; // which the native queue keeps
  const bool in_order_;
};

} // namespace
} // namespace opencl

using opencl_interop = interop<backend::opencl>;

cl_command_queue opencl_interop::get(const queue& q) {
  const auto* native = dynamic_cast<const opencl::opencl_queue*>(handle_access::state(q)->native.get());
  if (native == nullptr)
    throw exception(make_error_code(errc::backend_mismatch), "the queue was not made from an OpenCL queue");
  opencl::check(clRetainCommandQueue(native->get()), "clRetainCommandQueue");
  return native->get();
}

std::vector<cl_event> opencl_interop::get(const event& e) {
  const auto& state = handle_access::state(e);
  const auto* native = state ? dynamic_cast<const opencl::opencl_event*>(state->native()) : nullptr;
  if (native == nullptr)
    throw exception(make_error_code(errc::backend_mismatch), "the event is not one of an OpenCL queue");
  return native->all();
}

queue opencl_interop::make_queue(cl_command_queue native, const context& ctx, const async_handler& handler) {
  using namespace opencl;
  const auto native_context = query<cl_context>(clGetCommandQueueInfo, native, CL_QUEUE_CONTEXT);
  if (native_context != handle_access::state(ctx)->native.get())
    throw exception(ctx, make_error_code(errc::invalid),
                    "make_queue: the native queue is not one of the context");
  const auto features =
      query<cl_command_queue_properties>(clGetCommandQueueInfo, native, CL_QUEUE_PROPERTIES);
  const bool in_order = (features & CL_QUEUE_OUT_OF_ORDER_EXEC_MODE_ENABLE) == 0;
  const bool profiled = (features & CL_QUEUE_PROFILING_ENABLE) != 0;
  using namespace property::queue;
  const property_list properties = in_order && profiled
                                       ? property_list(property::queue::in_order(), enable_profiling())
                                   : in_order ? property_list(property::queue::in_order())
                                   : profiled ? property_list(enable_profiling())
                                              : property_list();
  const device where = make_device(query<cl_device_id>(clGetCommandQueueInfo, native, CL_QUEUE_DEVICE));
  auto state = std::make_shared<queue_state>(where, ctx, handler, properties);
  state->native = std::make_unique<opencl_queue>(native, native_context, in_order);
  return handle_access::make<queue>(std::move(state));
}

event opencl_interop::make_event(const std::vector<cl_event>& native, const context& ctx) {
  using namespace opencl;
  for (cl_event e : native)
    if (query<cl_context>(clGetEventInfo, e, CL_EVENT_CONTEXT) != handle_access::state(ctx)->native.get())
      throw exception(ctx, make_error_code(errc::invalid),
                      "make_event: a native event is not one of the context");
  const auto ends = external_command(std::make_shared<error_sink>(handle_access::state(ctx)->handler));
  ends->set_native(std::make_shared<opencl_event>(native));
  end_after(native, ends);
  return handle_access::make<event>(ends);
}

} // namespace sycl::detail
