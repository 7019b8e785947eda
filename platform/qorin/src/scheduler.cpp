#include "scheduler.hpp"

#include <sycl/detail/last_use.hpp>
#include <sycl/exception.hpp>

#include <oneapi/tbb/task_arena.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <dlfcn.h>
#include <system_error>
#include <unistd.h>

namespace sycl::detail {

namespace {

constexpr auto nap_time = std::chrono::microseconds(50);
constexpr int naps_before_sleep = 40;
constexpr auto watch_time = std::chrono::milliseconds(10);
// How long the end of the process waits for commands that run, and for a sign of life of them.
constexpr auto patience = std::chrono::seconds(30);
constexpr auto pulse = std::chrono::seconds(1);
constexpr std::clock_t alive = CLOCKS_PER_SEC / 200;

// How many commands this thread is in: one that it runs may wait for another and run that.
thread_local int commands_here = 0;
thread_local const bool on_main_thread = ::gettid() == ::getpid();
// This thread ends a command and looks for the next one right after.
thread_local bool looks_for_work_next = false;

// Destroyed before the static objects of the libraries that this one uses, and after those of its users.
const struct end_of_library {
  end_of_library() noexcept {}
  end_of_library(const end_of_library&) = delete;
  end_of_library& operator=(const end_of_library&) = delete;
  ~end_of_library() { scheduler::instance().end_process(true); }
} at_the_end;

/// oneTBB cannot end on a thread of its own, where an item of a kernel may have called exit: the rest is left out then.
void end_for_users(int status, void*) {
  if (commands_here == 0 && oneapi::tbb::this_task_arena::current_thread_index() > 0) {
    std::fflush(nullptr);
    std::_Exit(status);
  }
  scheduler::instance().end_process(false);
}

} // namespace

bool register_user(const void* inside) noexcept {
  Dl_info library;
  if (::dladdr(inside, &library) != 0) // of no effect on the program itself, which stays anyway
    (void)::dlopen(library.dli_fname, RTLD_LAZY | RTLD_NOLOAD | RTLD_NODELETE);
  return ::on_exit(end_for_users, nullptr) == 0;
}

// Never destroyed: commands may be in flight while the process ends.
scheduler& scheduler::instance() {
  static scheduler* const one = new scheduler;
  return *one;
}

scheduler::scheduler() : preferred_dispatchers_(std::max(2u, std::thread::hardware_concurrency())) {}

void scheduler::warm_up() {
  const std::lock_guard lock(mutex_);
  if (dispatchers_ == 0 && !start_dispatcher())
    throw exception(make_error_code(errc::runtime), "queue: the system gives no thread to run commands");
}

void scheduler::add_ready(command& c) {
  const std::lock_guard lock(mutex_);
  c.phase_.store(command::phase::ready, std::memory_order_release);
  if (closed_ || (ending_ && !c.wanted_))
    return;
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
    watching_ = watching_ || start(&scheduler::watch);
    saturated_ = watching_;
    watcher_.notify_one();
  }
}

bool scheduler::claim(command& c) {
  std::unique_lock lock(mutex_);
  enter(lock);
  if (!c.claim()) {
    leave_locked();
    return false;
  }
  if (c.listed_)
    unlink(c);
  quiet_ = true;
  return true;
}

bool scheduler::enter_unless_ending() {
  std::unique_lock lock(mutex_);
  if (ending_)
    return false;
  enter(lock);
  return true;
}

void scheduler::leave() {
  const std::lock_guard lock(mutex_);
  leave_locked();
}

void scheduler::enter(std::unique_lock<std::mutex>& lock) {
  if (commands_here == 0) {
    calm_.wait(lock, [this] { return !held_back(); });
    ++running_;
  }
  ++commands_here;
}

void scheduler::leave_locked() noexcept {
  if (--commands_here > 0)
    return;
  --running_;
  calm_.notify_all();
}

/// Whether this thread, which is in no command, must not start one. Nobody joins the main thread when another one ends the
/// process, so it stops where it is.
bool scheduler::held_back() const noexcept {
  return ending_ && !ends_here() && (closed_ || draining_ || on_main_thread);
}

bool scheduler::prepare_to_sleep(command& c) {
  {
    const std::lock_guard lock(mutex_);
    if (closed_ && ends_here())
      return false;
    if (on_main_thread && commands_here == 0 && !ends_here())
      return true;
  }
  want(c);
  return true;
}

/// Has `c` and what it waits for run even at the end of the process.
void scheduler::want(command& c) {
  std::vector<std::shared_ptr<command>> wanted{c.shared_from_this()};
  while (!wanted.empty()) {
    const std::shared_ptr<command> next = std::move(wanted.back());
    wanted.pop_back();
    {
      const std::lock_guard lock(mutex_);
      if (std::exchange(next->wanted_, true))
        continue;
      if (!closed_ && !next->listed_ && next->current_phase() == command::phase::ready) {
        link(*next);
        call_for_service();
      }
    }
    for (auto& predecessor : next->incomplete_predecessors())
      wanted.push_back(std::move(predecessor));
  }
}

void scheduler::end_with_main_thread() {
  struct end_of_main_thread {
    end_of_main_thread() noexcept {}
    end_of_main_thread(const end_of_main_thread&) = delete;
    end_of_main_thread& operator=(const end_of_main_thread&) = delete;
    ~end_of_main_thread() { instance().end_process(false); }
  };
  if (on_main_thread)
    thread_local const end_of_main_thread end;
}

void scheduler::end_process(bool for_good) {
  std::unique_lock lock(mutex_);
  ending_ = true;
  ender_ = std::this_thread::get_id();
  closed_ = closed_ || for_good;
  for (command* c = first_; c != nullptr;) {
    command& listed = *std::exchange(c, c->list_next_);
    if (closed_ || !listed.wanted_)
      unlink(listed);
  }
  draining_ = true;
  wait_for_the_running(lock);
  draining_ = false;
  calm_.notify_all();
}

/// Not for ever, and only while something in this process computes: a command that sleeps may wait for what will not come
/// any more.
void scheduler::wait_for_the_running(std::unique_lock<std::mutex>& lock) {
  const std::size_t own = commands_here > 0 ? 1 : 0;
  const auto end = std::chrono::steady_clock::now() + patience;
  while (std::chrono::steady_clock::now() < end) {
    const std::clock_t computed = std::clock();
    if (calm_.wait_for(lock, pulse, [&] { return running_ == own; }) || std::clock() - computed < alive)
      return;
  }
}

bool scheduler::start(void (scheduler::*loop)()) noexcept {
  try {
    std::thread(loop, this).detach();
    return true;
  } catch (const std::system_error&) {
    return false;
  }
}

bool scheduler::start_dispatcher() noexcept {
  if (!start(&scheduler::dispatch))
    return false;
  ++dispatchers_;
  return true;
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
      leave_locked();
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
    ++commands_here;
    ++running_;
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
      if (first_ != nullptr && taken_ == taken_before && sleeping_ == 0 && !napping_)
        grow();
    }
    saturated_ = false;
  }
}

/// More dispatchers, as far as the system gives them; the next look tries again.
void scheduler::grow() noexcept {
  for (std::size_t more = dispatchers_ / 16 + 1; more > 0 && start_dispatcher(); --more)
    ;
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
