// A command, the node of the one graph that all queues, buffers and events share.
//
// A command is blocked while commands it depends on are incomplete, then ready, then running, then complete.
// Whoever moves it from ready to running, a dispatcher or a thread that waits for it, runs it. Completion drops
// everything the command held: its action, its predecessors, its buffers.
#pragma once

#include <sycl/detail/work.hpp>
#include <sycl/info.hpp>

#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace sycl::detail {

class error_sink;
class queue_state;

/// Another runtime's event that stands for a command, for as long as someone refers to the command.
class native_event {
 public:
  native_event() = default;
  native_event(const native_event&) = delete;
  native_event& operator=(const native_event&) = delete;
  virtual ~native_event() = default;
  /// Called once, after everything else that completion does.
  virtual void completed() noexcept = 0;
};

class command final : public std::enable_shared_from_this<command> {
 public:
  enum class phase : std::uint32_t { recording, blocked, ready, running, complete };

  /// `queue` may be null: a command that belongs to none.
  command(std::shared_ptr<queue_state> queue, std::shared_ptr<error_sink> errors, bool profiled);
  /// A command of no queue.
  explicit command(backend kind, std::shared_ptr<error_sink> errors = nullptr);
  command(const command&) = delete;
  command& operator=(const command&) = delete;

  // While recording, by the recording thread alone.
  void set_action(std::unique_ptr<work> action);
  bool has_action() const noexcept { return action_ != nullptr; }
  /// An external command has no action: it runs from the moment it is ready until `finish` is called.
  void make_external() noexcept { external_ = true; }
  void add_dependency(const std::shared_ptr<command>& predecessor);
  /// Hands over the errors of the commands of this one's queue, and of those that it depended on, however far back.
  void deliver_errors();
  void set_native(std::shared_ptr<native_event> native) noexcept { native_ = std::move(native); }
  void keep(std::shared_ptr<const void> resource) { resources_.push_back(std::move(resource)); }
  /// Ends the recording: the command runs once its dependencies are complete.
  void release();

  // From any thread, after the recording.
  phase current_phase() const noexcept { return phase_.load(std::memory_order_acquire); }
  bool complete() const noexcept { return current_phase() == phase::complete; }
  /// Blocks until complete; runs the command or what it waits for when no thread has started that.
  void wait();
  /// Of an external command: waits until it is ready, which makes it running.
  void wait_until_running();
  void finish() noexcept;
  bool running_on_this_thread() const noexcept;
  std::vector<std::shared_ptr<command>> incomplete_predecessors() const;

  backend kind() const noexcept { return kind_; }
  const native_event* native() const noexcept { return native_.get(); }
  const std::shared_ptr<error_sink>& errors() const noexcept { return errors_; }
  bool profiled() const noexcept { return profiled_; }
  std::uint64_t submit_time() const noexcept { return submit_time_; }
  std::uint64_t start_time() const noexcept { return start_time_.load(std::memory_order_acquire); }
  std::uint64_t end_time() const noexcept { return end_time_.load(std::memory_order_acquire); }

  // Position in the queue's list of incomplete commands, guarded by the queue.
  command* queue_previous = nullptr;
  command* queue_next = nullptr;
  std::uint64_t queue_number = 0;

 private:
  friend class scheduler;

  /// Moves ready to running; false when another thread was first.
  bool claim() noexcept;
  void run_action() noexcept;
  void take_error_sinks(const command& predecessor);
  void dependency_met();
  std::shared_ptr<command> claimable_ancestor();
  bool help();

  std::atomic<phase> phase_{phase::recording};
  std::atomic<std::uint32_t> unmet_{1}; // incomplete predecessors, plus one for the recording
  bool external_ = false;
  const backend kind_;
  const bool profiled_;
  bool wanted_ = false; // someone waits, or may; guarded by the scheduler, as are the next three
  bool listed_ = false; // in the scheduler's list
  command* list_previous_ = nullptr;
  command* list_next_ = nullptr;
  std::atomic<std::thread::id> runner_{};

  mutable std::mutex mutex_; // guards the two edge lists
  std::vector<command*> successors_;
  std::vector<std::shared_ptr<command>> predecessors_;

  std::unique_ptr<work> action_;
  std::vector<std::shared_ptr<const void>> resources_;
  std::shared_ptr<native_event> native_;
  std::shared_ptr<queue_state> queue_;
  const std::shared_ptr<error_sink> errors_;
  std::vector<std::weak_ptr<error_sink>>
      earlier_errors_;            // of commands of other queues; fixed by the recording
  std::shared_ptr<command> self_; // keeps an incomplete command alive

  const std::uint64_t submit_time_;
  std::atomic<std::uint64_t> start_time_{0};
  std::atomic<std::uint64_t> end_time_{0};
};

inline std::uint64_t device_clock_ns() {
  return static_cast<std::uint64_t>(std::chrono::duration_cast<std::chrono::nanoseconds>(
                                        std::chrono::steady_clock::now().time_since_epoch())
                                        .count());
}

} // namespace sycl::detail
