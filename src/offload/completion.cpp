#include "offload/completion.hpp"

#include <stdexcept>
#include <string>
#include <utility>

#include <hvl/omp_interop.h>

#include "offload/completion_threads.hpp"

namespace kestro::hvl::rng::detail::openmp {
namespace {

/// Calls the runtime's completion function; returns the error of its lookup.
int tell_completed(void* interop) {
  void* function = nullptr;
  const int error = hvl_tgt_get_interop_property(interop, HVL_TGT_COMPLETED, &function);
  if (error == HVL_TGT_OK)
    reinterpret_cast<hvl_omp_completed_function>(function)(interop);
  return error;
}

} // namespace

void tell_opencl(const native_event& event, void* interop, std::shared_ptr<void> generator) {
  if (event.get() == nullptr)
    throw std::runtime_error("the queue of the OpenCL interop object is not an OpenCL queue");
  cl_callback_rng(event.get(), CL_COMPLETE, interop, std::move(generator));
}

void cl_callback_rng(cl_event event, cl_int status, void* interop, std::shared_ptr<void> generator) {
  generator.reset();
  cl_int error = clRetainEvent(event);
  if (error == CL_SUCCESS) {
    error = clSetEventCallback(event, status, hvl_vs_omp_cl_callback_completed, interop);
    if (error != CL_SUCCESS)
      clReleaseEvent(event);
  }
  if (error != CL_SUCCESS)
    throw std::runtime_error("the completion cannot be told: OpenCL error " + std::to_string(error));
}

void tell_zerlin(const sycl::event& event, void* interop, std::shared_ptr<void> generator) {
  completion_threads::of_process().start(
      [pending = event, interop, numbers = std::move(generator)]() mutable {
        pending.wait();
        pending = sycl::event();
        numbers.reset();
        hvl_vs_omp_l0_callback_completed(interop);
      });
}

} // namespace kestro::hvl::rng::detail::openmp

int hvl_vs_omp_l0_callback_completed(void* interop) {
  return kestro::hvl::rng::detail::openmp::tell_completed(interop);
}

void CL_CALLBACK hvl_vs_omp_cl_callback_completed(cl_event event, cl_int, void* interop) {
  if (kestro::hvl::rng::detail::openmp::tell_completed(interop) == HVL_TGT_OK)
    clReleaseEvent(event);
}
