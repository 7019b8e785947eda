/* Interop objects as an OpenMP offload runtime hands them out: a handle behind which the native objects of a foreign
   runtime (OpenCL, SYCL, Zerlin) stand, and through which a library reports that its asynchronous work is done. C11
   and C++; every function may be called from any thread, and none throws. */
#ifndef HVL_OMP_INTEROP_H
#define HVL_OMP_INTEROP_H

#include <stdint.h>

#define HVL_OMP_API __attribute__((visibility("default")))

#ifdef __cplusplus
extern "C" {
#endif

/* An interop object; null is omp_interop_none. */
typedef void* hvl_omp_interop;

/* ---- The OpenMP 5.1 query. */

/* Property identifiers of the standard; its further ones are known, but hold no integer. */
enum {
  HVL_OMP_IPR_FR_ID = -1,      /* foreign runtime, see below */
  HVL_OMP_IPR_FR_NAME = -2,    /* a string */
  HVL_OMP_IPR_VENDOR = -3,     /* without a value here */
  HVL_OMP_IPR_DEVICE_NUM = -5, /* device number that the interop object was made with */
  HVL_OMP_IPR_TARGETSYNC = -9, /* a pointer; the lowest identifier */
  /* of this implementation: 1 if the native queue is in order, else 0 */
  HVL_OMP_IPR_IN_ORDER = 10
};

enum {
  HVL_OMP_FR_OPENCL = 3,
  HVL_OMP_FR_SYCL = 4, /* SYCL over Zerlin: the native handles are Zerlin's */
  HVL_OMP_FR_ZERLIN = 6
};

enum {
  HVL_OMP_IRC_NO_VALUE = 1,
  HVL_OMP_IRC_SUCCESS = 0,
  HVL_OMP_IRC_EMPTY = -1,        /* the interop object is omp_interop_none */
  HVL_OMP_IRC_OUT_OF_RANGE = -2, /* no property has this identifier */
  HVL_OMP_IRC_TYPE_PTR = -4,     /* the property is a pointer */
  HVL_OMP_IRC_TYPE_STR = -5,     /* the property is a string */
  HVL_OMP_IRC_OTHER = -6         /* not an interop object of this runtime */
};

/* omp_get_interop_int of OpenMP 5.1. The value of an integer property, or 0 with the reason in *ret_code,
   which may be null. */
HVL_OMP_API intptr_t omp_get_interop_int(const hvl_omp_interop interop, int property_id, int* ret_code);

/* ---- What a device library asks. */

enum {
  HVL_TGT_COMPLETED = 4, /* hvl_omp_completed_function, to be called once for each piece of completed work */
  HVL_TGT_PLATFORM = 5,  /* native handles; for OpenCL the cl_... objects */
  HVL_TGT_DEVICE = 6,
  HVL_TGT_CONTEXT = 7,
  HVL_TGT_QUEUE = 8,
  HVL_TGT_BACKEND = 9 /* which runtime's handles these are, as a number: 0 OpenCL, 1 Zerlin */
};

typedef void (*hvl_omp_completed_function)(hvl_omp_interop interop);

enum {
  HVL_TGT_OK = 0,
  HVL_TGT_BAD_INTEROP = -1,  /* null, or not an interop object of this runtime */
  HVL_TGT_NO_PROPERTY = -2,  /* no property has this number */
  HVL_TGT_BAD_ARGUMENT = -3, /* `value` is null */
  HVL_TGT_NO_VALUE = -4      /* the object was made without this handle */
};

/* Stores a property in *value. On failure *value is unchanged. */
HVL_OMP_API int hvl_tgt_get_interop_property(hvl_omp_interop interop, int number, void** value);

/* ---- Making and destroying. */

typedef struct {
  int foreign_runtime; /* HVL_OMP_FR_... */
  int device_number;
  int in_order; /* whether the native queue is */
  /* Native handles, kept as they are and never retained or released. `context` is required. Without a queue a library
     makes its own. */
  void* platform;
  void* device;
  void* context;
  void* queue;
  /* Called at each completion, before it is counted, on the thread that reports it; may be null. */
  void (*on_completed)(hvl_omp_interop interop, void* user_data);
  void* user_data;
} hvl_omp_interop_description;

/* Null for an unknown foreign runtime, without a context, or without memory. */
HVL_OMP_API hvl_omp_interop hvl_omp_interop_create(const hvl_omp_interop_description* description);

/* Destroys it and sets the handle to null. Completions that are still to come must have been waited for. */
HVL_OMP_API int hvl_omp_interop_destroy(hvl_omp_interop* interop);

/* ---- Completions. */

/* How many arrived since the object was made; HVL_TGT_BAD_INTEROP. */
HVL_OMP_API int64_t hvl_omp_interop_completions(hvl_omp_interop interop);

/* Returns HVL_TGT_OK when at least `completions` arrived since the object was made, or HVL_TGT_NO_VALUE after
   `milliseconds`; a negative time waits without limit. */
HVL_OMP_API int hvl_omp_interop_wait(hvl_omp_interop interop, int64_t completions, int64_t milliseconds);

#ifdef __cplusplus
}
#endif

#endif
