#include "limits.hpp"
#include "objects.hpp"

#include <sycl/local_accessor.hpp>

namespace sycl {

namespace detail {

void request(handler& commands, buffer_state& memory, access_mode mode) {
  commands.group_->requests.emplace_back(memory.shared_from_this(), mode);
}

std::size_t reserve_local_memory(handler& commands, std::size_t bytes, std::size_t alignment) {
  std::size_t& used = commands.group_->local_bytes;
  const std::size_t offset = (used + alignment - 1) / alignment * alignment;
  if (bytes > local_memory_bytes || offset > local_memory_bytes - bytes)
    throw exception(make_error_code(errc::memory_allocation), "local accessors beyond local_mem_size");
  used = offset + bytes;
  return offset;
}

} // namespace detail

handler::handler(const queue& q)
    : queue_(detail::handle_access::state(q)), group_(std::make_unique<detail::recording>()) {}
handler::~handler() = default;

event handler::finish() {
  return detail::handle_access::make<event>(queue_->submit(std::move(*group_)));
}

void handler::depends_on(const event& dependency) {
  if (const auto& command = detail::handle_access::state(dependency); command && !command->complete())
    group_->dependencies.push_back(command);
}

void handler::depends_on(const std::vector<event>& dependencies) {
  for (const event& dependency : dependencies)
    depends_on(dependency);
}

void handler::set_work(std::unique_ptr<detail::work> action) {
  if (group_->action)
    throw exception(make_error_code(errc::invalid), "a command group has one action");
  group_->action = std::move(action);
}

std::size_t handler::local_bytes() const {
  return group_->local_bytes;
}

void handler::memcpy(void* to, const void* from, std::size_t bytes) {
  if (bytes > 0 && (to == nullptr || from == nullptr))
    throw exception(make_error_code(errc::invalid), "memcpy: a null pointer");
  set_work(detail::make_work([=] { detail::copy_bytes(to, from, bytes); }));
}

void handler::memset(void* to, int value, std::size_t bytes) {
  if (bytes > 0 && to == nullptr)
    throw exception(make_error_code(errc::invalid), "memset: a null pointer");
  set_work(detail::make_work([=] { detail::set_bytes(to, value, bytes); }));
}

void handler::prefetch(void*, std::size_t) {
  set_work(detail::make_work([] {}));
}
void handler::mem_advise(void*, std::size_t, int) {
  set_work(detail::make_work([] {}));
}

void handler::copy_box(const detail::box_copy& what, std::shared_ptr<const void> keep) {
  set_work(detail::make_work([what, keep = std::move(keep)] { detail::copy_box(what); }));
}

interop_handle handler::interop() const {
  return detail::handle_access::make<interop_handle>(queue_);
}

backend interop_handle::get_backend() const noexcept {
  return queue_->where.get_backend();
}

} // namespace sycl
