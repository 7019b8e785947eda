#pragma once

#include <utility>

#include <sycl/sycl.hpp>

/// What differs between SYCL implementations, in one place. Everything else is standard SYCL 2020.
namespace kestro::hvl::rng::detail::portability {

/// Has `task` run on the host when the command group's dependencies are met.
template <class Task>
void host_task(sycl::handler& handler, Task&& task) {
#if defined(ADAPTIVECPP_EXT_ENQUEUE_CUSTOM_OPERATION) || defined(ACPP_EXT_ENQUEUE_CUSTOM_OPERATION)
  handler.AdaptiveCpp_enqueue_custom_operation([task = std::forward<Task>(task)](auto&) { task(); });
#else
  handler.host_task(std::forward<Task>(task));
#endif
}

} // namespace kestro::hvl::rng::detail::portability
