// `interop_handle`: what a host task may learn about the objects behind its queue.
#pragma once

#include <sycl/context.hpp>

namespace sycl {

class interop_handle {
 public:
  interop_handle() = delete;
  backend get_backend() const noexcept;

 private:
  friend struct detail::handle_access;
  explicit interop_handle(std::shared_ptr<detail::queue_state> queue) : queue_(std::move(queue)) {}
  std::shared_ptr<detail::queue_state> queue_;
};

} // namespace sycl
