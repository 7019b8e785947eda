#pragma once

#include <sycl/sycl.hpp>

/// What SYCL implementations call the backends that the service knows.
namespace kestro::hvl::gpu::backends {

#if defined(__ACPP__) || defined(__ADAPTIVECPP__) || defined(__HIPSYCL__)
inline constexpr sycl::backend opencl = sycl::backend::ocl;
#else
#define KESTRO_HVL_HAS_ZERLIN
inline constexpr sycl::backend opencl = sycl::backend::opencl;
inline constexpr sycl::backend zerlin = sycl::backend::zerlin;
#endif

} // namespace kestro::hvl::gpu::backends
