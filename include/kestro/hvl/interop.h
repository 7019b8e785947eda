/* What the library exports beside its classes and the functions of offload.h: the clean-up before the SYCL runtime
   goes away, and the completion functions that it hands to device runtimes. C11 and C++; kestro/hvl/interop.hpp has
   the functions whose types are SYCL's. */
#ifndef KESTRO_HVL_INTEROP_H
#define KESTRO_HVL_INTEROP_H

#include <stdint.h>

#include "detail/export.hpp"

#ifdef __cplusplus
extern "C" {
#endif

struct _cl_event;

/* Functions to call before the SYCL runtime goes away: when the process exits, when this library is unloaded or when
   the core service library is, whichever comes first; the last registered is called first. */

/* Makes the registry if there is none. */
KESTRO_HVL_API void hvl_sycl_init_destructor(void);

/* Registers a function, which is called once, with a pointer that it need not use. It must not register another one.
   The 33rd registration prints a message and ends the process with status 1. */
KESTRO_HVL_API void hvl_sycl_register_destructor(void (*function)(void*));

/* Calls the registered functions and drops the registry; does nothing when there is none. */
KESTRO_HVL_API void hvl_sycl_destructor(void);

/* Tells the OpenMP runtime that the work of `interop` is complete. Returns 0, or the error of the lookup of its
   completion function. */
KESTRO_HVL_API int hvl_vs_omp_l0_callback_completed(void* interop);

/* The same as a callback of an OpenCL event (a cl_event and a cl_int), which it releases; when the lookup fails the
   event stays retained. How the event's command ended does not matter here. */
KESTRO_HVL_API void hvl_vs_omp_cl_callback_completed(struct _cl_event* event, int32_t status, void* interop);

#ifdef __cplusplus
}
#endif

#endif
