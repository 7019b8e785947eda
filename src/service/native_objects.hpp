#pragma once

#include <sycl/sycl.hpp>

#include "service/device_facts.hpp"

/// SYCL objects around native handles, which stay the caller's. What SYCL implementations do differently is
/// behind these; one without native handles throws `unimplemented`.
namespace kestro::hvl::gpu {

sycl::platform platform_of_native(void* platform, hvl_gpu_backend_t backend);

sycl::device device_of_native(void* device, hvl_gpu_backend_t backend);

sycl::context context_of_native(void* context, hvl_gpu_backend_t backend, const sycl::device& device);

sycl::queue queue_of_native(void* queue, hvl_gpu_backend_t backend, const sycl::context& context,
                            const sycl::device& device);

} // namespace kestro::hvl::gpu
