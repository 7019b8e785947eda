#include "opencl_fixture.hpp"

#include <string>

namespace {

using sycl::backend;

class opencl_objects : public opencl_fixture {};

TEST_F(opencl_objects, wraps_platforms_and_devices_once) {
  const auto platform = sycl::make_platform<backend::opencl>(platform_);
  const auto device = sycl::make_device<backend::opencl>(device_);
  EXPECT_EQ(device, sycl::make_device<backend::opencl>(device_));
  EXPECT_EQ(device.get_platform(), platform);
  EXPECT_EQ(platform.get_backend(), backend::opencl);
  EXPECT_EQ(device.get_backend(), backend::opencl);
  EXPECT_EQ(sycl::get_native<backend::opencl>(platform), platform_);
  const cl_device_id native = sycl::get_native<backend::opencl>(device);
  EXPECT_EQ(native, device_);
  clReleaseDevice(native);
}

TEST_F(opencl_objects, answers_for_the_native_device) {
  const auto device = sycl::make_device<backend::opencl>(device_);
  EXPECT_TRUE(device.is_cpu());
  EXPECT_FALSE(device.is_gpu());
  EXPECT_TRUE(device.has(sycl::aspect::cpu) && device.has(sycl::aspect::usm_device_allocations));
  char name[1024] = "";
  expect_success(clGetDeviceInfo(device_, CL_DEVICE_NAME, sizeof name, name, nullptr));
  EXPECT_EQ(device.get_info<sycl::info::device::name>(), std::string(name) + " (host threads)");
  char vendor[1024] = "";
  expect_success(clGetDeviceInfo(device_, CL_DEVICE_VENDOR, sizeof vendor, vendor, nullptr));
  EXPECT_EQ(device.get_info<sycl::info::device::vendor>(), vendor);
  cl_uint number = 0;
  expect_success(clGetDeviceInfo(device_, CL_DEVICE_VENDOR_ID, sizeof number, &number, nullptr));
  EXPECT_EQ(device.get_info<sycl::info::device::vendor_id>(), number);
  expect_success(clGetDeviceInfo(device_, CL_DEVICE_MAX_COMPUTE_UNITS, sizeof number, &number, nullptr));
  EXPECT_EQ(device.get_info<sycl::info::device::max_compute_units>(), number);
  std::size_t size = 0;
  expect_success(clGetDeviceInfo(device_, CL_DEVICE_MAX_WORK_GROUP_SIZE, sizeof size, &size, nullptr));
  EXPECT_GT(device.get_info<sycl::info::device::max_work_group_size>(), 0u);
  EXPECT_LE(device.get_info<sycl::info::device::max_work_group_size>(), size);
}

TEST_F(opencl_objects, holds_a_reference_while_it_lives) {
  const auto references = [&] {
    cl_uint count = 0;
    expect_success(clGetContextInfo(context_, CL_CONTEXT_REFERENCE_COUNT, sizeof count, &count, nullptr));
    return count;
  };
  const cl_uint before = references();
  {
    const sycl::context context = make_context();
    EXPECT_EQ(context.get_backend(), backend::opencl);
    ASSERT_EQ(context.get_devices().size(), 1u);
    EXPECT_EQ(context.get_devices()[0], sycl::make_device<backend::opencl>(device_));
    EXPECT_EQ(references(), before + 1);
    const cl_context native = sycl::get_native<backend::opencl>(context);
    EXPECT_EQ(native, context_);
    EXPECT_EQ(references(), before + 2);
    clReleaseContext(native);
  }
  EXPECT_EQ(references(), before);
}

TEST_F(opencl_objects, refuses_what_is_not_its_own) {
  const std::error_code mismatch = make_error_code(sycl::errc::backend_mismatch);
  sycl::queue host;
  EXPECT_EQ(code_thrown_by([&] { sycl::get_native<backend::opencl>(host.get_device()); }), mismatch);
  EXPECT_EQ(code_thrown_by([&] { sycl::get_native<backend::opencl>(host.get_context()); }), mismatch);
  EXPECT_EQ(code_thrown_by([&] { sycl::get_native<backend::opencl>(host); }), mismatch);
  EXPECT_EQ(code_thrown_by([&] { sycl::get_native<backend::opencl>(host.single_task([] {})); }), mismatch);
  EXPECT_EQ(code_thrown_by([&] { sycl::get_native<backend::opencl>(sycl::event()); }), mismatch);
  EXPECT_EQ(
      code_thrown_by([&] { sycl::make_queue<backend::opencl>(make_native_queue(), host.get_context()); }),
      make_error_code(sycl::errc::invalid));
  const std::error_code native = code_thrown_by([] { sycl::make_context<backend::opencl>(nullptr); });
  EXPECT_EQ(native, std::error_code(CL_INVALID_CONTEXT, sycl::error_category_for<backend::opencl>()));
}

} // namespace
