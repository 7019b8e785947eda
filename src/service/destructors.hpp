#pragma once

#include <kestro/hvl/detail/export.hpp>

/// Functions to call before the SYCL runtime goes away: when the process exits, when this library is unloaded
/// or when the core service library is, whichever comes first; the last registered is called first.
extern "C" {

/// Makes the registry if there is none.
KESTRO_HVL_API void hvl_sycl_init_destructor();

/// Registers a function, which is called once, with a pointer that it need not use. It must not register
/// another one. The 33rd registration prints a message and ends the process with status 1.
KESTRO_HVL_API void hvl_sycl_register_destructor(void (*function)(void*));

/// Calls the registered functions and drops the registry; does nothing when there is none.
KESTRO_HVL_API void hvl_sycl_destructor();
}
