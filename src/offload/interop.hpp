#pragma once

#include <cstdint>

#include <kestro/hvl/interop.hpp>

/// What the bridge learns from an OpenMP interop object.
namespace kestro::hvl::rng::detail::openmp {

/// Identifiers of the OpenMP standard's list.
enum class foreign_runtime : std::intptr_t { none = 0, opencl = 3, sycl = 4, zerlin = 6 };

/// `status` becomes -2 for an object without a foreign runtime, -1 for an unknown one, otherwise 0.
foreign_runtime foreign_runtime_of(void* interop, std::int32_t& status);

/// The cached queue for the native handles.
sycl::queue queue_of(void* interop);

/// False when LIBOMPTARGET_OPENCL_USE_SVM begins with "1": OpenCL memory is then shared virtual memory.
bool hvl_tgt_ocl_use_usm();

} // namespace kestro::hvl::rng::detail::openmp
