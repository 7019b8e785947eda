#include "graph.hpp"
#include "objects.hpp"
#include "scheduler.hpp"

#include <set>

namespace sycl {

namespace detail {

queue_state::queue_state(device dev, context c, async_handler handler, property_list list)
    : where(std::move(dev)), ctx(std::move(c)), properties(std::move(list)),
      in_order(properties.has_property<property::queue::in_order>()),
      profiled(properties.has_property<property::queue::enable_profiling>()),
      errors(
          std::make_shared<error_sink>(handler ? std::move(handler) : handle_access::state(ctx)->handler)) {
  scheduler::instance().warm_up();
}

namespace {

/// Holds mutexes while the work inside runs.
class holding_work final : public work {
 public:
  holding_work(std::unique_ptr<work> inside, std::set<std::mutex*> mutexes)
      : inside_(std::move(inside)), mutexes_(std::move(mutexes)) {}
  void run() override {
    std::vector<std::unique_lock<std::mutex>> held; // in the order of their addresses, as everyone takes them
    for (std::mutex* mutex : mutexes_)
      held.emplace_back(*mutex);
    inside_->run();
  }

 private:
  const std::unique_ptr<work> inside_;
  const std::set<std::mutex*> mutexes_;
};

/// Has the action hold the mutexes of the buffers that were made with one.
void hold_mutexes(recording& group) {
  std::set<std::mutex*> mutexes;
  for (const auto& request : group.requests)
    if (std::mutex* const mutex = request.first->mutex())
      mutexes.insert(mutex);
  if (group.action && !mutexes.empty())
    group.action = std::make_unique<holding_work>(std::move(group.action), std::move(mutexes));
}

} // namespace

std::shared_ptr<command> queue_state::submit(recording&& group) {
  scheduler::end_with_main_thread();
  hold_mutexes(group);
  const auto c = std::make_shared<command>(shared_from_this(), errors, profiled);
  c->set_action(std::move(group.action));
  try {
    // The queue's order and the buffers' order are taken at one moment, so that they never contradict.
    const std::lock_guard lock(mutex_);
    if (!in_order) {
      c->queue_number = submitted_++;
      c->queue_previous = last_;
      (last_ != nullptr ? last_->queue_next : first_) = c.get();
      last_ = c.get();
    }
    if (native)
      native->enter(*c, errors);
    for (const auto& dependency : group.dependencies)
      c->add_dependency(dependency);
    if (in_order) {
      c->add_dependency(latest_);
      latest_ = c;
    }
    if (!group.requests.empty()) {
      const std::lock_guard graph_lock(graph_mutex());
      for (const auto& [memory, mode] : group.requests)
        memory->users().enter(c, mode);
    }
    for (auto& request : group.requests)
      c->keep(std::move(request.first));
  } catch (...) {
    // Others may know the command already: it runs its course without doing anything.
    c->set_action(nullptr);
    c->release();
    throw;
  }
  c->release();
  return c;
}

void queue_state::forget(command& c) noexcept {
  if (in_order)
    return;
  const std::lock_guard lock(mutex_);
  (c.queue_previous != nullptr ? c.queue_previous->queue_next : first_) = c.queue_next;
  (c.queue_next != nullptr ? c.queue_next->queue_previous : last_) = c.queue_previous;
}

void queue_state::wait() {
  std::unique_lock lock(mutex_);
  if (in_order) {
    const std::shared_ptr<command> latest = latest_;
    lock.unlock();
    if (latest)
      latest->wait();
    return;
  }
  const std::uint64_t limit = submitted_;
  for (;;) {
    command* oldest = first_;
    while (oldest != nullptr && oldest->complete())
      oldest = oldest->queue_next;
    if (oldest == nullptr || oldest->queue_number >= limit)
      return;
    const std::shared_ptr<command> alive = oldest->shared_from_this();
    lock.unlock();
    alive->wait();
    lock.lock();
  }
}

namespace {

/// What the queues of one device share when they are given no context, so that their USM is one.
context default_context(const device& dev) {
  static std::mutex mutex;
  const std::lock_guard lock(mutex);
  auto& shared = handle_access::state(dev)->default_context;
  if (!shared)
    shared = handle_access::state(context(dev));
  return handle_access::make<context>(shared);
}

} // namespace
} // namespace detail

queue::queue(const property_list& properties) : queue(device(), properties) {}
queue::queue(const async_handler& handler, const property_list& properties)
    : queue(device(), handler, properties) {}
queue::queue(const device& dev, const property_list& properties) : queue(dev, async_handler(), properties) {}
queue::queue(const device& dev, const async_handler& handler, const property_list& properties)
    : queue(detail::default_context(dev), dev, handler, properties) {}
queue::queue(const context& ctx, const device& dev, const property_list& properties)
    : queue(ctx, dev, async_handler(), properties) {}
queue::queue(const context& ctx, const device& dev, const async_handler& handler,
             const property_list& properties) {
  bool member = false;
  for (const device& d : ctx.get_devices())
    member = member || d == dev;
  if (!member)
    throw exception(ctx, make_error_code(errc::invalid), "queue: the device is not one of the context's");
  state_ = std::make_shared<detail::queue_state>(dev, ctx, handler, properties);
}

backend queue::get_backend() const noexcept {
  return state_->where.get_backend();
}
context queue::get_context() const {
  return state_->ctx;
}
device queue::get_device() const {
  return state_->where;
}
bool queue::is_in_order() const {
  return state_->in_order;
}
const property_list& queue::properties() const noexcept {
  return state_->properties;
}

template <>
context queue::get_info<info::queue::context>() const {
  return get_context();
}
template <>
device queue::get_info<info::queue::device>() const {
  return get_device();
}

void queue::wait() {
  state_->wait();
}
void queue::wait_and_throw() {
  state_->wait();
  state_->errors->deliver();
}
void queue::throw_asynchronous() {
  state_->errors->deliver();
}

} // namespace sycl
