#pragma once

#include <sycl/sycl.hpp>

#include "interop.h"

/// The event's native OpenCL event, a `cl_event`, retained for the caller; null for an event of another backend.
KESTRO_HVL_API struct _cl_event* hvl_vs_omp_get_native(sycl::event event);

/// The queue for the native handles of an OpenMP interop object. `status` becomes 0; or -2 for an object without a
/// foreign runtime, -1 for an unknown one, -4 when no queue can be made of the handles, and the result is then a
/// queue on the default device.
KESTRO_HVL_API sycl::queue hvl_vs_omp_get_openmp_queue(void* interop, int& status);
