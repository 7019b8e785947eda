#pragma once

#include <cstdint>

/// What of the OpenMP offload runtime is found when the program runs and not when it is linked, so that another
/// runtime can take the place of the product's own.
namespace kestro::hvl::gpu {

/// `omp_get_interop_int` of the OpenMP runtime: the first one among the libraries that the program has loaded, or
/// else that of the library which `hvl_omp_load_lib` opens. Looked up once. When there is none, prints message 3
/// and ends the process with exit status 2.
std::intptr_t hvl_omp_get_interop_int(void* interop, int property, int* ret_code);

/// Opens the product's own OpenMP runtime; null when it cannot be found.
void* hvl_omp_load_lib();

} // namespace kestro::hvl::gpu
