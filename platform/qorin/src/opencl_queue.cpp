// Queues and events shared with OpenCL.
#include "opencl_native.hpp"

namespace sycl::detail {

namespace opencl {

namespace {

/// OpenCL's events for a command.
class opencl_event final : public native_event {
public:
  explicit opencl_event(const std::vector<cl_event>& events) {
    for (cl_event e : events)
      events_.push_back(retained(e, clRetainEvent, clReleaseEvent));
  }
  /// A new user event, which `completed` completes.
  static std::shared_ptr<opencl_event> of_command(cl_context ctx) {
    cl_int status = CL_SUCCESS;
    const cl_event user = clCreateUserEvent(ctx, &status);
    check(status, "clCreateUserEvent");
    auto made = std::make_shared<opencl_event>(std::vector<cl_event>{user});
    clReleaseEvent(user);
    made->completes_ = true;
    return made;
  }

  void completed() noexcept override {
    if (completes_)
      clSetUserEventStatus(at(0), CL_COMPLETE);
  }

  cl_event at(std::size_t i) const { return static_cast<cl_event>(events_[i].get()); }
  /// The caller releases them.
  std::vector<cl_event> all() const {
    std::vector<cl_event> result;
    for (const auto& e : events_) {
      result.push_back(static_cast<cl_event>(e.get()));
      check(clRetainEvent(result.back()), "clRetainEvent");
    }
    return result;
  }

private:
  std::vector<std::shared_ptr<void>> events_;
  bool completes_ = false;
};

/// A command that ends when native events have ended.
class waiter {
public:
  explicit waiter(std::shared_ptr<error_sink> errors)
      : command_(std::make_shared<command>(backend::opencl)), errors_(std::move(errors)) {
    command_->make_external();
  }

  const std::shared_ptr<command>& wait_for(const std::vector<cl_event>& events) {
    command_->release();
    left_ = events.size() + 1;
    const auto self = std::make_shared<waiter>(std::move(*this));
    return self->command_;
  }

private:
  std::shared_ptr<command> command_;
  std::shared_ptr<error_sink> errors_;
  std::size_t left_ = 0;
};

} // namespace
} // namespace opencl
} // namespace sycl::detail
