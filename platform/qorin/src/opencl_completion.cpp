#include "opencl_completion.hpp"

#include <atomic>
#include <condition_variable>
#include <list>

namespace sycl::detail::opencl {

namespace {

/// A command and the events it waits for.
class completion {
 public:
  completion(const std::vector<cl_event>& events, std::shared_ptr<command> ends)
      : ends_(std::move(ends)), entries_(events.size()), left_(events.size() + 1) {
    for (std::size_t i = 0; i < events.size(); ++i)
      entries_[i].event = retained(events[i], clRetainEvent, clReleaseEvent);
  }

  std::size_t size() const { return entries_.size(); }
  cl_event event(std::size_t i) const { return static_cast<cl_event>(entries_[i].event.get()); }
  bool all_ended() const { return left_.load(std::memory_order_acquire) == 0; }

  /// Event i has ended with this status; only the first call for an event counts.
  void ended(std::size_t i, cl_int status) {
    if (entries_[i].ended.exchange(true))
      return;
    if (status < 0)
      ends_->errors()->add(error(status, "an event that was waited for"));
    one_less();
  }
  void one_less() {
    if (left_.fetch_sub(1, std::memory_order_acq_rel) == 1)
      ends_->finish();
  }

 private:
  struct entry {
    std::shared_ptr<void> event;
    std::atomic<bool> ended{false};
  };
  const std::shared_ptr<command> ends_;
  std::vector<entry> entries_;
  std::atomic<std::size_t> left_;
};

struct callback_data {
  std::shared_ptr<completion> pending;
  std::size_t index;
};

void CL_CALLBACK on_end(cl_event, cl_int status, void* data) {
  const std::unique_ptr<callback_data> here(static_cast<callback_data*>(data));
  here->pending->ended(here->index, status);
}

/// Finds events that ended in an error. OpenCL wants callbacks to be called for those, too, but there are
/// implementations that do not, and a command that waits for ever is worse than one that waits for the next look.
class error_watcher {
 public:
  static error_watcher& instance() {
    static auto& one = *new error_watcher; // its thread lives as long as the process
    return one;
  }

  void add(std::shared_ptr<completion> pending) {
    const std::lock_guard lock(mutex_);
    if (!std::exchange(started_, true))
      std::thread([this] { watch(); }).detach();
    pending_.push_back(std::move(pending));
    added_.notify_one();
  }

 private:
  static constexpr std::chrono::milliseconds between_looks{5};

  void watch() {
    for (std::list<std::shared_ptr<completion>> watched;;) {
      {
        std::unique_lock lock(mutex_);
        if (watched.empty())
          added_.wait(lock, [this] { return !pending_.empty(); });
        watched.splice(watched.end(), pending_);
      }
      std::this_thread::sleep_for(between_looks);
      watched.remove_if([](const auto& c) { return c->all_ended(); });
      for (const auto& c : watched)
        look(*c);
    }
  }
  static void look(completion& c) {
    for (std::size_t i = 0; i < c.size(); ++i) {
      cl_int status = CL_COMPLETE;
      const cl_int asked =
          clGetEventInfo(c.event(i), CL_EVENT_COMMAND_EXECUTION_STATUS, sizeof status, &status, nullptr);
      if (asked == CL_SUCCESS && status < 0)
        c.ended(i, status);
    }
  }

  std::mutex mutex_;
  std::condition_variable added_;
  std::list<std::shared_ptr<completion>> pending_;
  bool started_ = false;
};

} // namespace

void end_after(const std::vector<cl_event>& events, std::shared_ptr<command> ends) {
  const auto pending = std::make_shared<completion>(events, ends);
  ends->release();
  for (std::size_t i = 0; i < events.size(); ++i) {
    auto data = std::make_unique<callback_data>(callback_data{pending, i});
    const cl_int status = clSetEventCallback(events[i], CL_COMPLETE, on_end, data.get());
    if (status == CL_SUCCESS)
      data.release(); // the callback's now
    else
      pending->ended(i, status);
  }
  pending->one_less();
  if (!pending->all_ended())
    error_watcher::instance().add(pending);
}

} // namespace sycl::detail::opencl
