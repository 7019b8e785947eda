/* Native objects to generate on, for C and C++ programs. */
#ifndef OFFLOAD_NATIVE_OBJECTS_H
#define OFFLOAD_NATIVE_OBJECTS_H

#include <hvl/omp_interop.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct {
  int foreign_runtime;
  int in_order;
  void* platform;
  void* device;
  void* context;
  void* queue;
  void* owner; /* of Zerlin's handles */
} native_objects;

/* On the first OpenCL platform; on the emulated GPU. Nonzero when there is none. */
int make_opencl_objects(native_objects* objects, int in_order);
int make_zerlin_objects(native_objects* objects, int in_order);

void release_objects(native_objects* objects);

hvl_omp_interop make_interop(const native_objects* objects);

#ifdef __cplusplus
}
#endif

#endif
