#include "command.hpp"

#include "errors.hpp"
#include "objects.hpp"
#include "scheduler.hpp"

#include <hvl/float_environment.hpp>

#include <oneapi/tbb/task_arena.h>

#include <algorithm>

namespace sycl::detail {

namespace {

// How far a waiting thread looks up the graph for something to run; beyond, the dispatchers do it.
constexpr int helping_depth = 16;
// How often a waiting thread looks again before it sleeps: a few microseconds.
constexpr int spins_before_sleep = 256;
constexpr int spins_between_helps = 32;

} // namespace

command::command(std::shared_ptr<queue_state> queue, std::shared_ptr<error_sink> errors, bool profiled)
    : kind_(queue ? queue->where.get_backend() : backend::host), profiled_(profiled),
      queue_(std::move(queue)), errors_(std::move(errors)), submit_time_(profiled ? device_clock_ns() : 0) {}

command::command(backend kind, std::shared_ptr<error_sink> errors)
    : kind_(kind), profiled_(false), errors_(std::move(errors)), submit_time_(0) {}

void command::set_action(std::unique_ptr<work> action) {
  action_ = std::move(action);
}

void command::add_dependency(const std::shared_ptr<command>& predecessor) {
  if (!predecessor || predecessor.get() == this)
    return;
  take_error_sinks(*predecessor);
  {
    const std::lock_guard lock(predecessor->mutex_);
    if (predecessor->complete())
      return;
    predecessor->successors_.push_back(this);
    unmet_.fetch_add(1, std::memory_order_relaxed);
  }
  const std::lock_guard lock(mutex_);
  predecessors_.push_back(predecessor);
}

void command::take_error_sinks(const command& predecessor) {
  const auto take = [this](const std::shared_ptr<error_sink>& sink) {
    if (sink && sink != errors_ &&
        std::none_of(earlier_errors_.begin(), earlier_errors_.end(),
                     [&](const auto& e) { return e.lock() == sink; }))
      earlier_errors_.push_back(sink);
  };
  take(predecessor.errors_);
  for (const auto& earlier : predecessor.earlier_errors_)
    take(earlier.lock());
}

void command::deliver_errors() {
  if (errors_)
    errors_->deliver();
  for (const auto& earlier : earlier_errors_)
    if (const std::shared_ptr<error_sink> sink = earlier.lock())
      sink->deliver();
}

void command::release() {
  self_ = shared_from_this();
  phase_.store(phase::blocked, std::memory_order_release);
  dependency_met();
}

void command::dependency_met() {
  if (unmet_.fetch_sub(1, std::memory_order_acq_rel) != 1)
    return;
  if (external_) {
    phase_.store(phase::running, std::memory_order_release);
    phase_.notify_all();
  } else {
    scheduler::instance().add_ready(*this);
  }
}

bool command::claim() noexcept {
  phase expected = phase::ready;
  return phase_.compare_exchange_strong(expected, phase::running, std::memory_order_acq_rel);
}

void command::run_action() noexcept {
  runner_.store(std::this_thread::get_id(), std::memory_order_relaxed);
  if (profiled_)
    start_time_.store(device_clock_ns(), std::memory_order_release);
  if (!action_)
    return;
  try {
    const hvl::default_float_environment same_for_everyone;
    // Isolated, so that waiting inside never picks up an outer task of this thread, which might wait for us.
    oneapi::tbb::this_task_arena::isolate([this] { action_->run(); });
  } catch (...) {
    errors_->add(std::current_exception());
  }
}

void command::finish() noexcept {
  if (profiled_)
    end_time_.store(device_clock_ns(), std::memory_order_release);
  action_.reset();
  resources_.clear();

  const std::shared_ptr<command> alive = std::move(self_);
  const std::shared_ptr<queue_state> queue = std::move(queue_);
  std::vector<command*> successors;
  std::vector<std::shared_ptr<command>> predecessors;
  {
    const std::lock_guard lock(mutex_);
    phase_.store(phase::complete, std::memory_order_release);
    successors.swap(successors_);
    predecessors.swap(predecessors_);
  }
  phase_.notify_all();
  if (queue)
    queue->forget(*this);
  for (command* successor : successors)
    successor->dependency_met();
  if (native_)
    native_->completed();
}

bool command::running_on_this_thread() const noexcept {
  return current_phase() == phase::running &&
         runner_.load(std::memory_order_relaxed) == std::this_thread::get_id();
}

std::vector<std::shared_ptr<command>> command::incomplete_predecessors() const {
  std::vector<std::shared_ptr<command>> result;
  const std::lock_guard lock(mutex_);
  for (const auto& predecessor : predecessors_)
    if (!predecessor->complete())
      result.push_back(predecessor);
  return result;
}

/// This command or one it waits for, ready to run; null when there is none near.
std::shared_ptr<command> command::claimable_ancestor() {
  std::shared_ptr<command> at = shared_from_this();
  for (int depth = 0; depth < helping_depth; ++depth) {
    if (at->current_phase() != phase::blocked)
      return at->current_phase() == phase::ready ? at : nullptr;
    std::shared_ptr<command> next;
    {
      const std::lock_guard lock(at->mutex_);
      for (const auto& predecessor : at->predecessors_) {
        const phase p = predecessor->current_phase();
        if (p == phase::ready || p == phase::blocked)
          next = predecessor;
        if (p == phase::ready)
          break;
      }
    }
    if (!next)
      return nullptr;
    at = std::move(next);
  }
  return nullptr;
}

/// Runs this command or one it waits for; false when there is none near to run.
bool command::help() {
  const std::shared_ptr<command> next = claimable_ancestor();
  if (!next || !scheduler::instance().claim(*next))
    return false;
  next->run_action();
  next->finish();
  scheduler::instance().leave();
  return true;
}

void command::wait() {
  for (int spin = 0; !complete(); ++spin) {
    if (spin % spins_between_helps == 0 && help()) {
      spin = -1;
    } else if (spin < spins_before_sleep) {
      __builtin_ia32_pause();
    } else if (!scheduler::instance().prepare_to_sleep(*this)) {
      return;
    } else {
      for (phase p = current_phase(); p != phase::complete; p = current_phase())
        phase_.wait(p, std::memory_order_acquire);
    }
  }
}

void command::wait_until_running() {
  while (current_phase() == phase::blocked)
    if (!help())
      phase_.wait(phase::blocked, std::memory_order_acquire);
}

} // namespace sycl::detail
