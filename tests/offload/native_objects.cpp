#include "native_objects.h"

#define CL_TARGET_OPENCL_VERSION 300
#include <CL/cl.h>
#include <sycl/backend/zerlin.hpp>
#include <sycl/sycl.hpp>

int make_opencl_objects(native_objects* objects, int in_order) {
  cl_platform_id platform = nullptr;
  cl_device_id device = nullptr;
  cl_int status = clGetPlatformIDs(1, &platform, nullptr);
  if (status != CL_SUCCESS || clGetDeviceIDs(platform, CL_DEVICE_TYPE_ALL, 1, &device, nullptr) != CL_SUCCESS)
    return 1;
  const cl_context context = clCreateContext(nullptr, 1, &device, nullptr, nullptr, &status);
  const cl_queue_properties out_of_order[] = {CL_QUEUE_PROPERTIES, CL_QUEUE_OUT_OF_ORDER_EXEC_MODE_ENABLE, 0};
  const cl_command_queue queue =
      clCreateCommandQueueWithProperties(context, device, in_order != 0 ? nullptr : out_of_order, &status);
  *objects = {HVL_OMP_FR_OPENCL, in_order, platform, device, context, queue, nullptr};
  return status != CL_SUCCESS;
}

int make_zerlin_objects(native_objects* objects, int in_order) {
  const sycl::device device(sycl::gpu_selector_v);
  const sycl::property_list properties =
      in_order != 0 ? sycl::property_list(sycl::property::queue::in_order()) : sycl::property_list();
  auto* owner = new sycl::queue(sycl::context(device), device, properties); // as above, of its own
  *objects = {HVL_OMP_FR_ZERLIN,
              in_order,
              sycl::get_native<sycl::backend::zerlin>(device.get_platform()),
              sycl::get_native<sycl::backend::zerlin>(device),
              sycl::get_native<sycl::backend::zerlin>(owner->get_context()),
              sycl::get_native<sycl::backend::zerlin>(*owner),
              owner};
  return 0;
}

void release_objects(native_objects* objects) {
  if (objects->foreign_runtime == HVL_OMP_FR_OPENCL) {
    clReleaseCommandQueue(static_cast<cl_command_queue>(objects->queue));
    clReleaseContext(static_cast<cl_context>(objects->context));
  }
  delete static_cast<sycl::queue*>(objects->owner);
}

hvl_omp_interop make_interop(const native_objects* objects) {
  hvl_omp_interop_description description{};
  description.foreign_runtime = objects->foreign_runtime;
  description.in_order = objects->in_order;
  description.platform = objects->platform;
  description.device = objects->device;
  description.context = objects->context;
  description.queue = objects->queue;
  return hvl_omp_interop_create(&description);
}
