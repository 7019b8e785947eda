#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#ifndef CL_TARGET_OPENCL_VERSION
#define CL_TARGET_OPENCL_VERSION 300
#endif
#include <CL/cl.h>
#include <kestro/hvl/interop.hpp>
#include <sycl/sycl.hpp>

#include "offload/interop.hpp"

/// How the OpenMP runtime gets to know that an offload call's work is done.
namespace kestro::hvl::rng::detail::openmp {

/// Owns an OpenCL event.
class native_event {
 public:
  native_event() = default;
  explicit native_event(cl_event event) {
    if (event != nullptr)
      event_.reset(event, clReleaseEvent);
  }
  cl_event get() const { return event_.get(); }

 private:
  std::shared_ptr<_cl_event> event_;
};

/// On the OpenCL path with LIBOMPTARGET_OPENCL_USE_SVM set to 1: access of the host's threads to the output, which
/// is shared virtual memory. Elsewhere does nothing.
class shared_virtual_memory {
 public:
  shared_virtual_memory(const sycl::queue& queue, foreign_runtime runtime, void* memory, std::int64_t n,
                        std::size_t value_bytes);
  shared_virtual_memory(const shared_virtual_memory&) = delete;
  shared_virtual_memory& operator=(const shared_virtual_memory&) = delete;
  ~shared_virtual_memory();

  bool is_used() const { return is_used_; }

  /// When the memory may be written.
  sycl::event ready() const;

  /// Ends the access behind `generation`; returns the event of what then comes last.
  native_event release_after(const sycl::event& generation);

 private:
  sycl::queue queue_;
  void* memory_;
  bool is_used_;
  bool is_mapped_ = false;
  native_event mapped_;
};

/// OpenCL: has the completion told from a callback of `event`. Destroys the generator, which work in flight does
/// not need.
void tell_opencl(const native_event& event, void* interop, std::shared_ptr<void> generator);
void cl_callback_rng(cl_event event, cl_int status, void* interop, std::shared_ptr<void> generator);

/// Zerlin: starts a thread that waits for the event, destroys the generator and tells of the completion. The
/// library joins its threads before it is unloaded.
void tell_zerlin(const sycl::event& event, void* interop, std::shared_ptr<void> generator);

} // namespace kestro::hvl::rng::detail::openmp
