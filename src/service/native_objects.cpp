#include "service/native_objects.hpp"

#include <kestro/hvl/exceptions.hpp>

#include "service/portability.hpp"

namespace kestro::hvl::gpu {
namespace {

#if defined(KESTRO_HVL_HAS_OPENCL) || defined(KESTRO_HVL_HAS_ZERLIN)
// The handle as the type by which a backend knows the native object of a `T`.
template <sycl::backend Backend, class T>
auto native(void* handle) {
  return reinterpret_cast<sycl::backend_return_t<Backend, T>>(handle);
}
#endif

[[noreturn, maybe_unused]] void refuse() {
  throw unimplemented("rng", "offload", "native handles of this backend with this SYCL implementation");
}

} // namespace

sycl::platform platform_of_native([[maybe_unused]] void* platform,
                                  [[maybe_unused]] hvl_gpu_backend_t backend) {
#ifdef KESTRO_HVL_HAS_ZERLIN
  if (backend == backend_zerlin)
    return sycl::make_platform<portability::zerlin>(native<portability::zerlin, sycl::platform>(platform));
#endif
#ifdef KESTRO_HVL_HAS_OPENCL
  return sycl::make_platform<portability::opencl>(native<portability::opencl, sycl::platform>(platform));
#else
  refuse();
#endif
}

sycl::device device_of_native([[maybe_unused]] void* device, [[maybe_unused]] hvl_gpu_backend_t backend) {
#ifdef KESTRO_HVL_HAS_ZERLIN
  if (backend == backend_zerlin)
    return sycl::make_device<portability::zerlin>(native<portability::zerlin, sycl::device>(device));
#endif
#ifdef KESTRO_HVL_HAS_OPENCL
  return sycl::make_device<portability::opencl>(native<portability::opencl, sycl::device>(device));
#else
  refuse();
#endif
}

sycl::context context_of_native([[maybe_unused]] void* context, [[maybe_unused]] hvl_gpu_backend_t backend,
                                [[maybe_unused]] const sycl::device& device) {
#ifdef KESTRO_HVL_HAS_ZERLIN
  if (backend == backend_zerlin)
    return sycl::make_context<portability::zerlin>(
        {native<portability::zerlin, sycl::context>(context), {device}, sycl::zerlin::ownership::keep});
#endif
#ifdef KESTRO_HVL_HAS_OPENCL
  return sycl::make_context<portability::opencl>(native<portability::opencl, sycl::context>(context));
#else
  refuse();
#endif
}

sycl::queue queue_of_native([[maybe_unused]] void* queue, [[maybe_unused]] hvl_gpu_backend_t backend,
                            [[maybe_unused]] const sycl::context& context,
                            [[maybe_unused]] const sycl::device& device) {
#ifdef KESTRO_HVL_HAS_ZERLIN
  if (backend == backend_zerlin)
    return sycl::make_queue<portability::zerlin>(
        {native<portability::zerlin, sycl::queue>(queue), device, sycl::zerlin::ownership::keep}, context);
#endif
#ifdef KESTRO_HVL_HAS_OPENCL
  return sycl::make_queue<portability::opencl>(native<portability::opencl, sycl::queue>(queue), context);
#else
  refuse();
#endif
}

} // namespace kestro::hvl::gpu
