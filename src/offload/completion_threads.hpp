#pragma once

#include <condition_variable>
#include <functional>
#include <list>
#include <mutex>
#include <thread>

namespace kestro::hvl::rng::detail::openmp {

/// One thread for each piece of work to wait for. Threads that have ended are joined when the next one starts, the
/// last ones by the destructor.
class completion_threads {
 public:
  /// Those of the process; they end before the library is unloaded.
  static completion_threads& of_process();

  completion_threads() = default;
  completion_threads(const completion_threads&) = delete;
  completion_threads& operator=(const completion_threads&) = delete;
  ~completion_threads();

  /// Throws `std::system_error` when there is no thread to be had.
  void start(std::function<void()> body);

 private:
  using threads = std::list<std::thread>;

  void join_ended();
  void ends(threads::iterator self);

  std::mutex mutex_;
  std::condition_variable one_less_;
  threads running_; // under mutex_
  threads ended_;   // under mutex_
};

} // namespace kestro::hvl::rng::detail::openmp
