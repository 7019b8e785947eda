// Who runs commands: a pool of dispatcher threads, and the threads that wait.
//
// Waking a sleeping thread costs the waker several microseconds, more than many commands take, and a thread that
// submits and then waits runs its command itself anyway. So one idle dispatcher naps for short times before it
// sleeps, and while it naps submissions do not ring: the waiting thread, or the end of the nap, finds the command.
// When naps turn out to delay commands, submissions ring again.
//
// Host tasks may block. When all dispatchers are busy and none has taken a ready command for a while, the pool
// grows, so that a blocked task never holds up an independent one for good.
#pragma once

#include "command.hpp"

#include <condition_variable>
#include <cstddef>

namespace sycl::detail {

class scheduler {
 public:
  static scheduler& instance();

  /// Starts the first dispatcher, so that the first submission need not.
  void warm_up();
  void add_ready(command& c);
  /// Takes a ready command for the calling thread; false when another thread was first.
  bool claim(command& c);

 private:
  scheduler();

  void call_for_service();
  void start_dispatcher();
  void dispatch();
  command* next(std::unique_lock<std::mutex>& lock);
  bool nap(std::unique_lock<std::mutex>& lock);
  void watch();
  void link(command& c) noexcept;
  void unlink(command& c) noexcept;

  const std::size_t preferred_dispatchers_;

  std::mutex mutex_;
  std::condition_variable sleepers_;
  std::condition_variable napper_;
  std::condition_variable watcher_;
  command* first_ = nullptr; // ready commands, oldest first
  command* last_ = nullptr;
  std::size_t dispatchers_ = 0;
  std::size_t sleeping_ = 0;
  bool napping_ = false;
  bool quiet_ = true;       // do not ring a napping dispatcher
  bool watching_ = false;   // the watcher thread exists
  bool saturated_ = false;  // the watcher is to look
  std::uint64_t taken_ = 0; // commands that dispatchers took so far
};

} // namespace sycl::detail
