#include "opencl_completion.hpp"

#include "scheduler.hpp"

#include <condition_variable>
#include <map>

namespace sycl::detail::opencl {

namespace {

/// A command and how many of the events it waits for have not ended.
struct completion {
  completion(std::shared_ptr<command> c, std::size_t events) : ends(std::move(c)), events_left(events) {}
  completion(const completion&) = delete;
  completion& operator=(const completion&) = delete;

  void one_less() {
    if (events_left.fetch_sub(1, std::memory_order_acq_rel) == 1)
      ends->finish();
  }

  const std::shared_ptr<command> ends;
  std::atomic<std::size_t> events_left;
};

/// The events that commands wait for. OpenCL's callback tells their end, by a key, so that a callback that is never
/// called leaves nothing behind. OpenCL wants callbacks to be called for errors, too, but there are implementations
/// that do not; a thread looks for errors, since a command that waits for ever is worse than one that waits for the
/// next look.
class pending_events {
 public:
  static pending_events& instance() {
    static auto& one = *new pending_events; // its thread lives as long as the process
    return one;
  }

  void add(cl_event event, std::shared_ptr<completion> waiting) {
    entry added{retained(event, clRetainEvent, clReleaseEvent), std::move(waiting)};
    std::uintptr_t key = 0;
    {
      const std::lock_guard lock(mutex_);
      if (!std::exchange(started_, true))
        std::thread([this] { watch(); }).detach();
      key = ++last_key_;
      entries_.emplace(key, std::move(added));
    }
    added_.notify_one();
    const cl_int status = clSetEventCallback(
        event, CL_COMPLETE,
        [](cl_event, cl_int end, void* data) {
          instance().ended(reinterpret_cast<std::uintptr_t>(data), end);
        },
        reinterpret_cast<void*>(key));
    if (status != CL_SUCCESS)
      ended(key, status);
  }

 private:
  struct entry {
    std::shared_ptr<void> event;
    std::shared_ptr<completion> waiting;
  };
  using entry_map = std::map<std::uintptr_t, entry>;

  static constexpr std::chrono::milliseconds between_looks{5};

  /// The first call for a key counts.
  void ended(std::uintptr_t key, cl_int status) {
    entry_map::node_type found;
    {
      const std::lock_guard lock(mutex_);
      found = entries_.extract(key);
    }
    if (found.empty())
      return;
    completion& waiting = *found.mapped().waiting;
    if (status < 0)
      waiting.ends->errors()->add(error(status, "an event that was waited for"));
    waiting.one_less();
  }

  void watch() {
    for (;;) {
      {
        std::unique_lock lock(mutex_);
        added_.wait(lock, [this] { return !entries_.empty(); });
      }
      if (!scheduler::instance().enter_unless_ending()) // OpenCL goes, too
        return;
      look();
      scheduler::instance().leave();
      std::this_thread::sleep_for(between_looks);
    }
  }

  void look() {
    std::vector<std::pair<std::uintptr_t, std::shared_ptr<void>>> looked_at;
    {
      const std::lock_guard lock(mutex_);
      for (const auto& [key, e] : entries_)
        looked_at.emplace_back(key, e.event);
    }
    for (const auto& [key, event] : looked_at) {
      cl_int status = CL_COMPLETE;
      const cl_int asked = clGetEventInfo(static_cast<cl_event>(event.get()),
                                          CL_EVENT_COMMAND_EXECUTION_STATUS, sizeof status, &status, nullptr);
      if (asked == CL_SUCCESS && status < 0)
        ended(key, status);
    }
  }

  std::mutex mutex_;
  std::condition_variable added_;
  entry_map entries_;
  std::uintptr_t last_key_ = 0;
  bool started_ = false;
};

} // namespace

void end_after(const std::vector<cl_event>& events, std::shared_ptr<command> ends) {
  const auto waiting = std::make_shared<completion>(ends, events.size() + 1);
  ends->release();
  for (cl_event e : events)
    pending_events::instance().add(e, waiting);
  waiting->one_less();
}

} // namespace sycl::detail::opencl
