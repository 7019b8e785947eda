/* Random numbers made on an OpenCL device for a C program: the first million there, the rest on the host. */
#define CL_TARGET_OPENCL_VERSION 300
#include <CL/cl.h>
#include <hvl/omp_interop.h>
#include <hvl/streams.h>
#include <kestro/hvl/offload.h>

#include <stdio.h>
#include <stdlib.h>

enum { n = 1000000, rest = 1000 };

int main(void) {
  cl_platform_id platform;
  cl_device_id device;
  if (clGetPlatformIDs(1, &platform, NULL) != CL_SUCCESS ||
      clGetDeviceIDs(platform, CL_DEVICE_TYPE_ALL, 1, &device, NULL) != CL_SUCCESS) {
    puts("no OpenCL device");
    return 77;
  }
  cl_context context = clCreateContext(NULL, 1, &device, NULL, NULL, NULL);
  cl_command_queue queue = clCreateCommandQueueWithProperties(context, device, NULL, NULL);

  /* An OpenMP program has this object from `#pragma omp interop init(targetsync: interop)`. */
  hvl_omp_interop_description description = {.foreign_runtime = HVL_OMP_FR_OPENCL, .in_order = 1};
  description.platform = platform;
  description.device = device;
  description.context = context;
  description.queue = queue;
  hvl_omp_interop interop = hvl_omp_interop_create(&description);

  vqs_stream stream = NULL;
  double* r = malloc((n + rest) * sizeof *r);
  int status = vqsNewStream_64(&stream, VQS_ENGINE_PHILOX4X32X10, 2024);
  if (status == 0 && r != NULL && interop != NULL) {
    status = hvl_vqs_vdRngUniform_omp_offload_ilp64(0, stream, n, r, 0.0, 1.0, interop);
    if (status == 0) /* the stream stands behind the device's numbers already */
      status = vdRngUniform_64(0, stream, rest, r + n, 0.0, 1.0);
    if (status == 0)
      status = hvl_omp_interop_wait(interop, 1, -1);
  }
  double sum = 0;
  for (int k = 0; status == 0 && k < n + rest; ++k)
    sum += r[k];
  printf("status %d, mean %.4f\n", status, sum / (n + rest));

  free(r);
  vqsDeleteStream_64(&stream);
  hvl_omp_interop_destroy(&interop);
  clReleaseCommandQueue(queue);
  clReleaseContext(context);
  return status;
}
