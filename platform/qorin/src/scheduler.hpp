// Who runs commands: a pool of dispatcher threads, and the threads that wait.
//
// Waking a sleeping thread costs the waker several microseconds, more than many commands take, and a thread that
// submits and then waits runs its command itself anyway. So one idle dispatcher naps for short times before it
// sleeps, and while it naps submissions do not ring: the waiting thread, or the end of the nap, finds the command.
// When naps turn out to delay commands, submissions ring again.
//
// Host tasks may block. When all dispatchers are busy and none has taken a ready command for a while, the pool
// grows, so that a blocked task never holds up an independent one for good.
//
// At the end of the process everything goes that commands use: static objects of the program, oneTBB, the heap of
// objects that nobody waits for. From then on dispatchers run only what is waited for, commands that run are waited for,
// and when this library's static objects go nothing starts any more. Threads are never joined: idle ones use nothing but
// the scheduler, which is never destroyed.
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
  /// Takes a ready command for the calling thread; false when another thread was first. After it, `leave`.
  bool claim(command& c);
  /// Like a claim, but of no command, and refused (false) at the end of the process.
  bool enter_unless_ending();
  /// The calling thread is done with what it claimed or entered for.
  void leave();
  /// Called before the calling thread sleeps until `c` is complete; false when that will never be.
  bool prepare_to_sleep(command& c);

  /// Called on each submission: sees to it that the end of the main thread, where most processes end, is noticed.
  static void end_with_main_thread();
  /// The process ends: see above. The second time, for good, when this library's static objects are destroyed.
  void end_process(bool for_good);

 private:
  scheduler();

  void enter(std::unique_lock<std::mutex>& lock);
  void leave_locked() noexcept;
  bool ends_here() const noexcept { return ending_ && ender_ == std::this_thread::get_id(); }
  bool held_back() const noexcept;
  void want(command& c);
  void wait_for_the_running(std::unique_lock<std::mutex>& lock);

  void call_for_service();
  bool start(void (scheduler::*loop)()) noexcept;
  bool start_dispatcher() noexcept;
  void dispatch();
  command* next(std::unique_lock<std::mutex>& lock);
  bool nap(std::unique_lock<std::mutex>& lock);
  void watch();
  void grow() noexcept;
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

  std::condition_variable calm_; // someone ended, or threads need no longer be held back
  std::size_t running_ = 0;      // threads that run commands
  bool ending_ = false;          // the process ends, on the thread `ender_`
  bool draining_ = false;        // the ending thread waits for running commands
  bool closed_ = false;          // nothing starts any more
  std::thread::id ender_;
};

} // namespace sycl::detail
