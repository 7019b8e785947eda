// The bridge's use of native OpenCL objects.
#include "offload/completion.hpp"

#include "service/portability.hpp"

#ifdef KESTRO_HVL_HAS_OPENCL

#include <stdexcept>
#include <string>
#include <vector>

using kestro::hvl::portability::opencl;

namespace kestro::hvl::rng::detail::openmp {
namespace {

void check(cl_int status, const char* call) {
  if (status != CL_SUCCESS)
    throw std::runtime_error(std::string(call) + ": OpenCL error " + std::to_string(status));
}

/// Owns the native queue that `get_native` has retained.
class native_queue {
 public:
  explicit native_queue(const sycl::queue& queue)
      : queue_(sycl::get_native<opencl>(queue), clReleaseCommandQueue) {}
  cl_command_queue get() const { return queue_.get(); }

 private:
  std::shared_ptr<_cl_command_queue> queue_;
};

} // namespace

shared_virtual_memory::shared_virtual_memory(const sycl::queue& queue, foreign_runtime runtime, void* memory,
                                             std::int64_t n, std::size_t value_bytes)
    : queue_(queue), memory_(memory),
      is_used_(runtime == foreign_runtime::opencl && memory != nullptr && n > 0 && !hvl_tgt_ocl_use_usm()) {
  if (!is_used_)
    return;
  cl_event mapped = nullptr;
  check(clEnqueueSVMMap(native_queue(queue).get(), CL_FALSE, CL_MAP_WRITE, memory,
                        static_cast<std::size_t>(n) * value_bytes, 0, nullptr, &mapped),
        "clEnqueueSVMMap");
  mapped_ = native_event(mapped);
  is_mapped_ = true;
  check(clFlush(native_queue(queue).get()), "clFlush");
}

shared_virtual_memory::~shared_virtual_memory() {
  if (is_mapped_)
    clEnqueueSVMUnmap(native_queue(queue_).get(), memory_, 0, nullptr, nullptr);
}

sycl::event shared_virtual_memory::ready() const {
  return sycl::make_event<opencl>({mapped_.get()}, queue_.get_context());
}

native_event shared_virtual_memory::release_after(const sycl::event& generation) {
  native_event last(hvl_vs_omp_get_native(generation));
  if (is_used_) {
    const native_queue queue(queue_);
    const cl_event before = last.get();
    cl_event unmapped = nullptr;
    check(clEnqueueSVMUnmap(queue.get(), memory_, 1, &before, &unmapped), "clEnqueueSVMUnmap");
    is_mapped_ = false;
    last = native_event(unmapped);
    check(clFlush(queue.get()), "clFlush");
  }
  return last;
}

} // namespace kestro::hvl::rng::detail::openmp

cl_event hvl_vs_omp_get_native(sycl::event event) {
  if (event.get_backend() != opencl)
    return nullptr;
  const std::vector<cl_event> native = sycl::get_native<opencl>(event);
  return native.front();
}

#else // no native objects: the OpenCL path says so when it finds no native event

namespace kestro::hvl::rng::detail::openmp {

shared_virtual_memory::shared_virtual_memory(const sycl::queue& queue, foreign_runtime, void* memory,
                                             std::int64_t, std::size_t)
    : queue_(queue), memory_(memory), is_used_(false) {}

shared_virtual_memory::~shared_virtual_memory() = default;

sycl::event shared_virtual_memory::ready() const {
  return {};
}

native_event shared_virtual_memory::release_after(const sycl::event& generation) {
  return native_event(hvl_vs_omp_get_native(generation));
}

} // namespace kestro::hvl::rng::detail::openmp

cl_event hvl_vs_omp_get_native(sycl::event) {
  return nullptr;
}

#endif
