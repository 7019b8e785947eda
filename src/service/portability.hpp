#pragma once

#include <utility>

#include <sycl/sycl.hpp>

// Interoperation is an extra of an implementation: its header is there or not.
#if __has_include(<sycl/backend/opencl.hpp>)
#include <sycl/backend/opencl.hpp>
#define KESTRO_HVL_HAS_OPENCL
#endif
#if __has_include(<sycl/backend/zerlin.hpp>)
#include <sycl/backend/zerlin.hpp>
#define KESTRO_HVL_HAS_ZERLIN
#endif
#if defined(__ACPP__) || defined(__ADAPTIVECPP__) || defined(__HIPSYCL__)
#define KESTRO_HVL_ON_ADAPTIVECPP
#endif

/// What differs between SYCL implementations, in one place. Everything else is standard SYCL 2020.
namespace kestro::hvl::portability {

/// Has `task` run on the host when the command group's dependencies are met.
template <class Task>
void host_task(sycl::handler& handler, Task&& task) {
#ifdef KESTRO_HVL_ON_ADAPTIVECPP
  handler.AdaptiveCpp_enqueue_custom_operation([task = std::forward<Task>(task)](auto&) { task(); });
#else
  handler.host_task(std::forward<Task>(task));
#endif
}

/// What the backends that the library interoperates with are called; the standard promises neither.
#ifdef KESTRO_HVL_HAS_OPENCL
inline constexpr sycl::backend opencl = sycl::backend::opencl;
#endif
#ifdef KESTRO_HVL_HAS_ZERLIN
inline constexpr sycl::backend zerlin = sycl::backend::zerlin;
#endif

} // namespace kestro::hvl::portability
