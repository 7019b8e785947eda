#include "limits.hpp"
#include "objects.hpp"

#include <sycl/local_accessor.hpp>

namespace sycl {

namespace detail {

void request(handler& commands, buffer_state& memory, access_mode mode) {
  if (memory.bound_to() && memory.bound_to() != handle_access::state(commands.queue_->ctx))
    throw exception(commands.queue_->ctx, make_error_code(errc::invalid),
                    "a buffer that is bound to another context");
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
  if (const auto& command = detail::handle_access::state(dependency))
    group_->dependencies.push_back(command);
}

void handler::depends_on(const std::vector<event>& dependencies) {
  for (const event& dependency : dependencies)
    depends_on(dependency);
}

void handler::use_kernel_bundle(const kernel_bundle<bundle_state::executable>& bundle) {
  if (bundle.get_context() != queue_->ctx)
    throw exception(queue_->ctx, make_error_code(errc::invalid),
                    "use_kernel_bundle: a bundle of another context");
  bundle_ = detail::handle_access::state(bundle);
}

void handler::check_kernel(const void* tag) const {
  if (!detail::handle_access::make<detail::executable_bundle>(bundle_).has_kernel({tag, ""}))
    throw exception(queue_->ctx, make_error_code(errc::kernel_not_supported),
                    "a kernel that the bundle of its command group has not");
}

void handler::check_no_local_memory() const {
  if (group_->local_bytes > 0)
    throw exception(queue_->ctx, make_error_code(errc::kernel_argument),
                    "a local accessor, and a kernel without work-groups");
}

const std::shared_ptr<detail::specialization_values>& handler::constants() {
  if (!constants_)
    constants_ = std::make_shared<detail::specialization_values>();
  return constants_;
}

void handler::set_constant(const void* id, std::any value) {
  if (bundle_)
    throw exception(queue_->ctx, make_error_code(errc::invalid),
                    "set_specialization_constant: the constants are those of the kernel bundle in use");
  for (auto& [of, old] : *constants())
    if (of == id) {
      old = std::move(value);
      return;
    }
  constants_->emplace_back(id, std::move(value));
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

void handler::prefetch(const void*, std::size_t) {
  set_work(detail::make_work([] {}));
}
void handler::mem_advise(const void*, std::size_t, int) {
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
