/* Offloading the host-side stream interface: plain functions that generate from a stream on the queue behind an
   OpenMP interop object, tell the OpenMP runtime when the numbers are there, and leave the stream where the device
   stopped. C11 and C++. docs/offload.md says what the statuses mean and what ends the process.

   For every distribution of detail/offload.def, with Gaussian in single precision as the example:

     int hvl_vqs_vsRngGaussian_omp_offload_ilp64(int64_t method, void* stream, int64_t n, float* r,
                                                 float a, float sigma, void* interop);
     int hvl_vqs_vsRngGaussian_omp_offload_lp64(int32_t method, void* stream, int32_t n, float* r,
                                                float a, float sigma, void* interop);
     int hvl_vqs_vsrnggaussian_omp_offload(const int64_t* method, void* const* stream, const int64_t* n, float* r,
                                           const float* a, const float* sigma, void* interop);
     int hvl_vqs_vsrnggaussian_omp_offload_lp64(const int32_t* method, void* const* stream, const int32_t* n,
                                                float* r, const float* a, const float* sigma, void* interop);

   `method` must be 0. `stream` is a stream of the host-side stream library; it stands behind the n values when the
   call returns, while the device may still be writing to `r`. `r` is memory that the queue's device can reach.
   Arrays are read before the call returns. */
#ifndef KESTRO_HVL_OFFLOAD_H
#define KESTRO_HVL_OFFLOAD_H

#include <stdint.h>

#include "detail/parameter_list.h"

#ifdef __cplusplus
extern "C" {
#define KESTRO_HVL_NOEXCEPT noexcept
#else
#define KESTRO_HVL_NOEXCEPT
#endif

enum {
  KESTRO_HVL_OFFLOAD_OK = 0,
  KESTRO_HVL_OFFLOAD_UNKNOWN_RUNTIME = -1, /* the interop object's foreign runtime is not one of 3, 4, 6 */
  KESTRO_HVL_OFFLOAD_FAILED = -2, /* no foreign runtime; or a failure, told in one line on standard error */
  KESTRO_HVL_OFFLOAD_BAD_ARGUMENT = -3 /* the method is not 0; Multinomial: ntrial < 0 or k < 1 */
};

#define KESTRO_HVL_OFFLOAD(tag, Name, name, result, parameters, ...)                                         \
  __attribute__((visibility("default"))) int32_t hvl_vqs_##tag##Rng##Name##_omp_offload_ilp64(               \
      int64_t method, void* stream, int64_t n, result* r KESTRO_HVL_BY_VALUE(parameters), void* interop)     \
      KESTRO_HVL_NOEXCEPT;                                                                                   \
  __attribute__((visibility("default"))) int32_t hvl_vqs_##tag##Rng##Name##_omp_offload_lp64(                \
      int32_t method, void* stream, int32_t n, result* r KESTRO_HVL_BY_VALUE(parameters), void* interop)     \
      KESTRO_HVL_NOEXCEPT;                                                                                   \
  __attribute__((visibility("default"))) int32_t hvl_vqs_##tag##rng##name##_omp_offload(                     \
      const int64_t* method, void* const* stream, const int64_t* n,                                          \
      result* r KESTRO_HVL_BY_ADDRESS(parameters), void* interop) KESTRO_HVL_NOEXCEPT;                       \
  __attribute__((visibility("default"))) int32_t hvl_vqs_##tag##rng##name##_omp_offload_lp64(                \
      const int32_t* method, void* const* stream, const int32_t* n,                                          \
      result* r KESTRO_HVL_BY_ADDRESS(parameters), void* interop) KESTRO_HVL_NOEXCEPT;
#include "detail/offload.def"
#undef KESTRO_HVL_OFFLOAD

#ifdef __cplusplus
}
#endif

#endif
