#include "graph.hpp"
#include "usm_memory.hpp"

#include <sycl/host_accessor.hpp>

namespace sycl::detail {

namespace {

void wait_for_users(buffer_state& memory) {
  std::vector<std::shared_ptr<command>> users;
  {
    const std::lock_guard lock(graph_mutex());
    users = memory.users().all();
  }
  for (const auto& user : users)
    if (!user->running_on_this_thread()) // a command may hold the last handle of a buffer it uses
      user->wait();
}

// Guards the lazily made memory of all buffers; held for an allocation at most.
std::mutex& memory_mutex() {
  static std::mutex mutex;
  return mutex;
}

} // namespace

buffer_state::buffer_state(std::size_t bytes, buffer_allocation allocate, void* host,
                           std::shared_ptr<void> keep, const property_list& properties)
    : bytes_(bytes), allocate_(std::move(allocate)), host_(host), memory_(std::move(keep)),
      users_(std::make_unique<buffer_users>()) {
  namespace property = property::buffer;
  if (properties.has_property<property::use_mutex>())
    mutex_ = properties.get_property<property::use_mutex>().get_mutex_ptr();
  if (properties.has_property<property::context_bound>())
    bound_to_ = handle_access::state(properties.get_property<property::context_bound>().get_context());
}

buffer_state::~buffer_state() = default;

void* buffer_state::data() {
  const std::lock_guard lock(memory_mutex());
  if (host_ != nullptr)
    return host_;
  if (!memory_ && bytes_ > 0) {
    try {
      if (bytes_ > allocation_limit())
        throw std::bad_alloc();
      memory_ = allocate_(bytes_);
    } catch (const std::bad_alloc&) {
      throw exception(make_error_code(errc::memory_allocation), "no memory for a buffer");
    }
  }
  return memory_.get();
}

void buffer_state::set_final_copy(std::function<void(const void*)> copy) {
  detach_from_host();
  final_copy_ = std::move(copy);
}

void buffer_state::set_write_back(bool enabled) {
  if (!enabled)
    detach_from_host();
  write_back_ = enabled;
}

void buffer_state::detach_from_host() {
  if (host_ == nullptr)
    return;
  wait_for_users(*this);
  void* const host = std::exchange(host_, nullptr);
  const std::shared_ptr<void> keep = std::move(memory_);
  memory_.reset();
  if (bytes_ > 0)
    std::memcpy(data(), host, bytes_);
  final_copy_ = [host, keep, bytes = bytes_](const void* from) { std::memcpy(host, from, bytes); };
}

void buffer_state::finish() {
  wait_for_users(*this);
  if (!final_copy_ || !write_back_ || bytes_ == 0)
    return;
  const auto held = mutex_ != nullptr ? std::unique_lock(*mutex_) : std::unique_lock<std::mutex>();
  final_copy_(data());
}

std::shared_ptr<void> hold_for_host(buffer_state& memory, access_mode mode) {
  const auto hold = std::make_shared<command>(nullptr, nullptr, false);
  hold->make_external();
  hold->keep(memory.shared_from_this());
  {
    const std::lock_guard lock(graph_mutex());
    memory.users().enter(hold, mode);
  }
  hold->release();
  hold->wait_until_running();
  return {hold.get(), [hold](void*) { hold->finish(); }};
}

} // namespace sycl::detail
