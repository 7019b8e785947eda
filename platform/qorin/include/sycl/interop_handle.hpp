// `interop_handle`: what a host task may learn about the objects behind its queue.
#pragma once

#include <sycl/context.hpp>

namespace sycl {

class queue;
template <backend Backend>
class backend_traits;

class QORIN_EXPORT interop_handle {
 public:
  interop_handle() = delete;
  backend get_backend() const noexcept;

  /// The native objects behind the queue; for the backends whose headers are included.
  template <backend Backend>
  typename backend_traits<Backend>::template return_type<queue> get_native_queue() const;
  template <backend Backend>
  typename backend_traits<Backend>::template return_type<device> get_native_device() const;
  template <backend Backend>
  typename backend_traits<Backend>::template return_type<context> get_native_context() const;

 private:
  friend struct detail::handle_access;
  explicit interop_handle(std::shared_ptr<detail::queue_state> queue) : queue_(std::move(queue)) {}
  std::shared_ptr<detail::queue_state> queue_;
};

} // namespace sycl
