#include "scheduler.hpp"

#include <algorithm>

namespace sycl::detail {

namespace {

constexpr auto nap_time = std::chrono::microseconds(50);
constexpr int naps_before_sleep = 40;
constexpr auto watch_time = std::chrono::milliseconds(10);
constexpr std::size_t most_dispatchers = 512;

// This thread ends a command and looks for the next one right after.
thread_local bool looks_for_work_next = false;

} // namespace

// Never destroyed: commands may be in flight while the process ends.
scheduler& scheduler::instance() {
  static scheduler* const one = new scheduler;
  return *one;
}

scheduler::scheduler() : preferred_dispatchers_(std::max(2u, std::thread::hardware_concurrency())) {}

void scheduler::warm_up() {
  const std::lock_guard lock(mutex_);
  if (dispatchers_ == 0)
    start_dispatcher();
}

void scheduler::add_ready(command& c) {
  const std::lock_guard lock(mutex_);
  c.phase_.store(command::phase::ready, std::memory_order_release);
  link(c);
  if (looks_for_work_next && first_ == &c)
    return;
  call_for_service();
}

/// There is a ready command: sees to it that a dispatcher comes for it.
void scheduler::call_for_service() {
  if (napping_) {
    if (!quiet_)
      napper_.notify_one();
  } else if (sleeping_ > 0) {
    sleepers_.notify_one();
  } else if (dispatchers_ < preferred_dispatchers_) {
    start_dispatcher();
  } else if (!saturated_) {
    saturated_ = true;
    if (!std::exchange(watching_, true))
      std::thread([this] { watch(); }).detach();
    watcher_.notify_one();
  }
}

bool scheduler::claim(command& c) {
  if (!c.claim())
    return false;
  const std::lock_guard lock(mutex_);
  if (c.listed_)
    unlink(c);
  quiet_ = true;
  return true;
}

void scheduler::start_dispatcher() {
  std::thread([this] { dispatch(); }).detach();
  ++dispatchers_;
}

void scheduler::dispatch() {
  std::unique_lock lock(mutex_);
  for (;;) {
    if (command* c = next(lock)) {
      lock.unlock();
      c->run_action();
      looks_for_work_next = true;
      c->finish();
      looks_for_work_next = false;
      lock.lock();
    }
  }
}

/// A claimed command, or null after a sleep.
command* scheduler::next(std::unique_lock<std::mutex>& lock) {
  while (first_ != nullptr) {
    command& c = *first_;
    unlink(c);
    ++taken_;
    if (!c.claim())
      continue;
    if (first_ != nullptr)
      call_for_service();
    return &c;
  }
  if (!napping_ && nap(lock))
    return nullptr;
  ++sleeping_;
  sleepers_.wait(lock, [this] { return first_ != nullptr; });
  --sleeping_;
  return nullptr;
}

/// Naps until there is work (true) or it has been quiet for some time (false).
bool scheduler::nap(std::unique_lock<std::mutex>& lock) {
  napping_ = true;
  for (int naps = 0; naps < naps_before_sleep && first_ == nullptr; ++naps) {
    const bool rung = napper_.wait_for(lock, nap_time) == std::cv_status::no_timeout;
    if (first_ != nullptr && !rung)
      quiet_ = false;
  }
  napping_ = false;
  return first_ != nullptr;
}

void scheduler::watch() {
  std::unique_lock lock(mutex_);
  for (;;) {
    watcher_.wait(lock, [this] { return saturated_; });
    while (first_ != nullptr) {
      const std::uint64_t taken_before = taken_;
      watcher_.wait_for(lock, watch_time);
      if (first_ != nullptr && taken_ == taken_before && sleeping_ == 0 && !napping_ &&
          dispatchers_ < most_dispatchers)
        start_dispatcher();
    }
    saturated_ = false;
  }
}

void scheduler::link(command& c) noexcept {
  c.listed_ = true;
  c.list_previous_ = last_;
  c.list_next_ = nullptr;
  (last_ != nullptr ? last_->list_next_ : first_) = &c;
  last_ = &c;
}

void scheduler::unlink(command& c) noexcept {
  c.listed_ = false;
  (c.list_previous_ != nullptr ? c.list_previous_->list_next_ : first_) = c.list_next_;
  (c.list_next_ != nullptr ? c.list_next_->list_previous_ : last_) = c.list_previous_;
}

} // namespace sycl::detail
