// A real OpenCL implementation's CPU device, a context and queues on it, for tests.
#pragma once

#include <sycl/backend/opencl.hpp>
#include <sycl/sycl.hpp>

#include <gtest/gtest.h>

#include <vector>

inline void expect_success(cl_int status) {
  ASSERT_EQ(status, CL_SUCCESS);
}

class opencl_fixture : public testing::Test {
 protected:
  void SetUp() override {
    cl_uint count = 0;
    std::vector<cl_platform_id> platforms(16);
    expect_success(clGetPlatformIDs(16, platforms.data(), &count));
    for (cl_uint i = 0; i < count && device_ == nullptr; ++i) {
      platform_ = platforms[i];
      if (clGetDeviceIDs(platform_, CL_DEVICE_TYPE_CPU, 1, &device_, nullptr) != CL_SUCCESS)
        device_ = nullptr;
    }
    ASSERT_NE(device_, nullptr) << "no OpenCL CPU device: install an implementation such as PoCL";
    cl_int status = CL_SUCCESS;
    context_ = clCreateContext(nullptr, 1, &device_, nullptr, nullptr, &status);
    expect_success(status);
  }
  void TearDown() override {
    for (cl_command_queue q : queues_)
      clReleaseCommandQueue(q);
    if (context_ != nullptr)
      clReleaseContext(context_);
  }

  /// Released at the end of the test.
  cl_command_queue make_native_queue(cl_command_queue_properties features = 0) {
    const cl_queue_properties properties[] = {CL_QUEUE_PROPERTIES, features, 0};
    cl_int status = CL_SUCCESS;
    queues_.push_back(clCreateCommandQueueWithProperties(context_, device_, properties, &status));
    expect_success(status);
    return queues_.back();
  }
  sycl::context make_context(const sycl::async_handler& handler = {}) const {
    return sycl::make_context<sycl::backend::opencl>(context_, handler);
  }

  cl_platform_id platform_ = nullptr;
  cl_device_id device_ = nullptr;
  cl_context context_ = nullptr;

 private:
  std::vector<cl_command_queue> queues_;
};

/// The errc of what `f` throws; success when it does not throw.
template <class F>
std::error_code code_thrown_by(F f) {
  try {
    f();
  } catch (const sycl::exception& e) {
    return e.code();
  }
  return {};
}
