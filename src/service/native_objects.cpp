#include "service/native_objects.hpp"

#include <kestro/hvl/exceptions.hpp>

#include "service/backends.hpp"

#ifdef KESTRO_HVL_HAS_ZERLIN
#include <sycl/backend/opencl.hpp>
#include <sycl/backend/zerlin.hpp>

namespace kestro::hvl::gpu {
namespace {

// The handle as the type by which a backend knows the native object of a `T`.
template <sycl::backend Backend, class T>
auto native(void* handle) {
  return reinterpret_cast<sycl::backend_return_t<Backend, T>>(handle);
}

} // namespace

sycl::platform platform_of_native(void* platform, hvl_gpu_backend_t backend) {
  if (backend == backend_zerlin)
    return sycl::make_platform<backends::zerlin>(native<backends::zerlin, sycl::platform>(platform));
  return sycl::make_platform<backends::opencl>(native<backends::opencl, sycl::platform>(platform));
}

sycl::device device_of_native(void* device, hvl_gpu_backend_t backend) {
  if (backend == backend_zerlin)
    return sycl::make_device<backends::zerlin>(native<backends::zerlin, sycl::device>(device));
  return sycl::make_device<backends::opencl>(native<backends::opencl, sycl::device>(device));
}

sycl::context context_of_native(void* context, hvl_gpu_backend_t backend, const sycl::device& device) {
  if (backend == backend_zerlin)
    return sycl::make_context<backends::zerlin>(
        {native<backends::zerlin, sycl::context>(context), {device}, sycl::zerlin::ownership::keep});
  return sycl::make_context<backends::opencl>(native<backends::opencl, sycl::context>(context));
}

sycl::queue queue_of_native(void* queue, hvl_gpu_backend_t backend, const sycl::context& context,
                            const sycl::device& device) {
  if (backend == backend_zerlin)
    return sycl::make_queue<backends::zerlin>(
        {native<backends::zerlin, sycl::queue>(queue), device, sycl::zerlin::ownership::keep}, context);
  return sycl::make_queue<backends::opencl>(native<backends::opencl, sycl::queue>(queue), context);
}

} // namespace kestro::hvl::gpu

#else

namespace kestro::hvl::gpu {
namespace {

[[noreturn]] void refuse() {
  throw unimplemented("rng", "offload", "native handles with this SYCL implementation");
}

} // namespace

sycl::platform platform_of_native(void*, hvl_gpu_backend_t) {
  refuse();
}

sycl::device device_of_native(void*, hvl_gpu_backend_t) {
  refuse();
}

sycl::context context_of_native(void*, hvl_gpu_backend_t, const sycl::device&) {
  refuse();
}

sycl::queue queue_of_native(void*, hvl_gpu_backend_t, const sycl::context&, const sycl::device&) {
  refuse();
}

} // namespace kestro::hvl::gpu

#endif
