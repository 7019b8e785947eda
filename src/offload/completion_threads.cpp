#include "offload/completion_threads.hpp"

#include <algorithm>
#include <utility>

namespace kestro::hvl::rng::detail::openmp {

completion_threads& completion_threads::of_process() {
  static completion_threads threads;
  return threads;
}

completion_threads::~completion_threads() {
  {
    std::unique_lock lock(mutex_);
    // A completion function may end the process: its thread cannot be waited for.
    const auto own = std::find_if(running_.begin(), running_.end(), [](const std::thread& thread) {
      return thread.get_id() == std::this_thread::get_id();
    });
    if (own != running_.end()) {
      own->detach();
      running_.erase(own);
    }
    one_less_.wait(lock, [this] { return running_.empty(); });
  }
  join_ended();
}

void completion_threads::start(std::function<void()> body) {
  join_ended();
  const std::lock_guard lock(mutex_);
  const auto self = running_.emplace(running_.end());
  try {
    *self = std::thread([this, self, body = std::move(body)]() mutable {
      body();
      ends(self);
    });
  } catch (...) {
    running_.erase(self);
    throw;
  }
}

void completion_threads::join_ended() {
  threads ended;
  {
    const std::lock_guard lock(mutex_);
    ended.swap(ended_);
  }
  for (std::thread& thread : ended)
    thread.join();
}

void completion_threads::ends(threads::iterator self) {
  const std::lock_guard lock(mutex_);
  ended_.splice(ended_.end(), running_, self);
  one_less_.notify_all();
}

} // namespace kestro::hvl::rng::detail::openmp
