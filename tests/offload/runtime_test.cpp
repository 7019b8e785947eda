// The functions around the entry points: queues of interop objects, native events, completion functions, and shared
// virtual memory.
#include "fake_runtime.hpp"
#include "support.hpp"

#include "offload/completion.hpp"
#include "offload/interop.hpp"

#include <kestro/hvl/offload.h>

#include <cstdlib>

namespace offload_test {
namespace {

cl_uint references(cl_event event) {
  cl_uint count = 0;
  EXPECT_EQ(clGetEventInfo(event, CL_EVENT_REFERENCE_COUNT, sizeof count, &count, nullptr), CL_SUCCESS);
  return count;
}

TEST(openmp_queue, is_one_for_the_same_handles_and_reports_failures_by_its_status) {
  const target zerlin(path::zerlin), opencl(path::opencl);
  int status = 99;
  const sycl::queue first = hvl_vs_omp_get_openmp_queue(zerlin.interop(), status);
  EXPECT_EQ(status, 0);
  EXPECT_TRUE(first.get_device().is_gpu());
  status = 99;
  EXPECT_EQ(hvl_vs_omp_get_openmp_queue(zerlin.interop(), status), first);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(hvl_vs_omp_get_openmp_queue(opencl.interop(), status).get_backend(), sycl::backend::opencl);
  EXPECT_EQ(status, 0);

  fake_interop none(0), unknown(5), without_handles(6, -5);
  hvl_vs_omp_get_openmp_queue(nullptr, status);
  EXPECT_EQ(status, -2);
  hvl_vs_omp_get_openmp_queue(&unknown, status);
  EXPECT_EQ(status, -1);
  hvl_vs_omp_get_openmp_queue(&none, status);
  EXPECT_EQ(status, -2);
  hvl_vs_omp_get_openmp_queue(&without_handles, status);
  EXPECT_EQ(status, -4);
}

TEST(native_event, is_there_for_opencl_only) {
  const target zerlin(path::zerlin), opencl(path::opencl);
  int status = 99;
  const auto run = [&](const target& device) {
    return hvl_vs_omp_get_openmp_queue(device.interop(), status).submit([](sycl::handler& h) {
      h.host_task([] {});
    });
  };
  sycl::event on_zerlin = run(zerlin);
  EXPECT_EQ(hvl_vs_omp_get_native(on_zerlin), nullptr);
  on_zerlin.wait();
  const sycl::event on_opencl = run(opencl);
  cl_event native = hvl_vs_omp_get_native(on_opencl);
  ASSERT_NE(native, nullptr);
  EXPECT_EQ(clWaitForEvents(1, &native), CL_SUCCESS);
  EXPECT_EQ(clReleaseEvent(native), CL_SUCCESS);
}

TEST(completion_functions, tell_the_runtime_once_and_pass_on_the_error_of_its_lookup) {
  fake_interop good(6), bad(6, -5);
  EXPECT_EQ(hvl_vs_omp_l0_callback_completed(&good), 0);
  EXPECT_EQ(good.completions, 1);
  EXPECT_EQ(hvl_vs_omp_l0_callback_completed(&bad), -5);
  EXPECT_EQ(bad.completions, 0);
}

TEST(completion_functions, release_an_opencl_event_unless_the_lookup_fails) {
  target opencl(path::opencl);
  cl_int status = CL_SUCCESS;
  const cl_event event = clCreateUserEvent(static_cast<cl_context>(opencl.objects().context), &status);
  ASSERT_EQ(status, CL_SUCCESS);
  for (int extra = 0; extra < 2; ++extra) // one for the callback, one so that a wrong release is only counted
    clRetainEvent(event);
  const cl_uint before = references(event);
  fake_interop good(3), bad(3, -5);
  hvl_vs_omp_cl_callback_completed(event, CL_COMPLETE, &bad);
  EXPECT_EQ(references(event), before);
  hvl_vs_omp_cl_callback_completed(event, CL_DEVICE_NOT_FOUND, &good); // however the command ended
  EXPECT_EQ(references(event), before - 1);
  EXPECT_EQ(good.completions, 1);
  EXPECT_EQ(bad.completions, 0);
  clSetUserEventStatus(event, CL_COMPLETE);
  clReleaseEvent(event);
  clReleaseEvent(event);
}

class shared_virtual_memory : public testing::Test {
 protected:
  void SetUp() override { setenv("LIBOMPTARGET_OPENCL_USE_SVM", "1", 1); }
  void TearDown() override { unsetenv("LIBOMPTARGET_OPENCL_USE_SVM"); }
};

TEST_F(shared_virtual_memory, is_written_between_commands_of_the_queue) {
  target opencl(path::opencl);
  const auto context = static_cast<cl_context>(opencl.objects().context);
  const auto queue = static_cast<cl_command_queue>(opencl.objects().queue);
  constexpr std::int64_t n = 1001;
  constexpr std::size_t bytes = n * sizeof(std::uint32_t);
  auto* r = static_cast<std::uint32_t*>(clSVMAlloc(context, CL_MEM_READ_WRITE, bytes, 0));
  ASSERT_NE(r, nullptr);
  const std::uint32_t poison = 0xA5A5A5A5;
  ASSERT_EQ(clEnqueueSVMMemFill(queue, r, &poison, sizeof poison, bytes, 0, nullptr, nullptr), CL_SUCCESS);
  const stream numbers, host;
  ASSERT_EQ(hvl_vqs_viRngUniformBits_omp_offload_ilp64(0, numbers, n, r, opencl.interop()), 0);
  std::vector<std::uint32_t> got(n), expected(n), rest(8), rest_expected(8);
  ASSERT_EQ(clEnqueueSVMMemcpy(queue, CL_TRUE, got.data(), r, bytes, 0, nullptr, nullptr), CL_SUCCESS);
  opencl.wait(1);
  EXPECT_EQ(opencl.completions(), 1);
  ASSERT_EQ(viRngUniformBits_64(0, host, n, expected.data()), 0);
  EXPECT_EQ(got, expected);
  ASSERT_EQ(viRngUniformBits_64(0, numbers, 8, rest.data()), 0);
  ASSERT_EQ(viRngUniformBits_64(0, host, 8, rest_expected.data()), 0);
  EXPECT_EQ(rest, rest_expected);
  // A refusal behind the mapping gives the memory back.
  EXPECT_EQ(observe([&] {
              const stream without_bits(VQS_ENGINE_MCG31M1);
              return hvl_vqs_viRngUniformBits32_omp_offload_ilp64(0, without_bits, n, r, opencl.interop());
            }).status,
            -2);
  EXPECT_EQ(clFinish(queue), CL_SUCCESS);
  clSVMFree(context, r);
}

} // namespace
} // namespace offload_test
