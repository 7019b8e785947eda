// The caches over real native objects: the emulated GPU's and those of an OpenCL implementation.
#include "service/native_handles.hpp"

#include <hvl/omp_interop.h>
#include <kestro/hvl/exceptions.hpp>
#include <kestro/hvl/interop.h>
#include <sycl/backend/opencl.hpp>
#include <sycl/backend/zerlin.hpp>

#include <gmock/gmock.h>

#include <chrono>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace kestro::hvl::gpu;

class interop {
 public:
  explicit interop(const hvl_omp_interop_description& description)
      : object_(hvl_omp_interop_create(&description)) {
    EXPECT_NE(object_, nullptr);
  }
  interop(const interop&) = delete;
  ~interop() { hvl_omp_interop_destroy(&object_); }

  hvl_omp_interop get() const { return object_; }

 private:
  hvl_omp_interop object_;
};

int run_kernel(sycl::queue& queue) {
  int* const shared = sycl::malloc_shared<int>(2, queue);
  shared[0] = shared[1] = 0;
  queue.submit([=](sycl::handler& handler) { handler.single_task([=] { shared[0] = 20; }); }).wait();
  queue.submit([=](sycl::handler& handler) { handler.host_task([=] { shared[1] = 22; }); }).wait();
  const int sum = shared[0] + shared[1];
  sycl::free(shared, queue);
  return sum;
}

class Zerlin : public testing::Test {
 protected:
  hvl_omp_interop_description description(int runtime = HVL_OMP_FR_ZERLIN) const {
    hvl_omp_interop_description d{};
    d.foreign_runtime = runtime;
    d.platform = sycl::get_native<sycl::backend::zerlin>(queue_.get_device().get_platform());
    d.device = device_handle_;
    d.context = context_handle_;
    d.queue = queue_handle_;
    return d;
  }

  sycl::queue queue_{sycl::gpu_selector_v, sycl::property::queue::in_order()};
  sycl::context context_ = queue_.get_context();
  sycl::device device_ = queue_.get_device();
  void* const queue_handle_ = sycl::get_native<sycl::backend::zerlin>(queue_);
  void* const context_handle_ = sycl::get_native<sycl::backend::zerlin>(context_);
  void* const device_handle_ = sycl::get_native<sycl::backend::zerlin>(device_);
};

TEST_F(Zerlin, TheSameHandlesGiveTheSameObjects) {
  sycl::context& context =
      lookup_and_cache_qorin_context(context_handle_, device_handle_, backend_zerlin, &device_);
  EXPECT_EQ(context, context_);
  EXPECT_EQ(&lookup_and_cache_qorin_context(context_handle_, device_handle_, backend_zerlin, &device_),
            &context);
  sycl::queue& queue = lookup_and_cache_qorin_queue(device_handle_, backend_zerlin, context, queue_handle_);
  EXPECT_EQ(queue, queue_);
  EXPECT_EQ(&lookup_and_cache_qorin_queue(device_handle_, backend_zerlin, context, queue_handle_), &queue);

  sycl::queue other(context_, device_);
  void* const other_handle = sycl::get_native<sycl::backend::zerlin>(other);
  EXPECT_EQ(lookup_and_cache_qorin_queue(device_handle_, backend_zerlin, context, other_handle), other);
}

TEST_F(Zerlin, AnInteropObjectLeadsToItsQueueAndContext) {
  for (int runtime : {HVL_OMP_FR_ZERLIN, HVL_OMP_FR_SYCL}) {
    const interop object(description(runtime));
    const queue_and_context found = lookup_and_cache_qorin_queue_and_context(object.get());
    EXPECT_EQ(found.queue, queue_);
    EXPECT_EQ(found.context, context_);
    EXPECT_EQ(run_kernel(found.queue), 42);
  }
}

TEST_F(Zerlin, WithoutANativeQueueThereIsOneOfEachOrder) {
  auto d = description();
  d.queue = nullptr;
  const interop free_order(d);
  d.in_order = 1;
  const interop in_order(d), in_order_too(d);
  sycl::queue& first = lookup_and_cache_qorin_queue_and_context(in_order.get()).queue;
  sycl::queue& second = lookup_and_cache_qorin_queue_and_context(free_order.get()).queue;
  EXPECT_TRUE(first.is_in_order());
  EXPECT_FALSE(second.is_in_order());
  EXPECT_EQ(first.get_context(), context_);
  EXPECT_EQ(first.get_device(), device_);
  EXPECT_EQ(&lookup_and_cache_qorin_queue_and_context(in_order_too.get()).queue, &first);
  EXPECT_EQ(run_kernel(second), 42);
}

TEST_F(Zerlin, ManyThreadsGetOneQueue) {
  const sycl::queue fresh(device_);
  auto d = description();
  d.context = sycl::get_native<sycl::backend::zerlin>(fresh.get_context());
  d.queue = sycl::get_native<sycl::backend::zerlin>(fresh);
  const interop object(d);
  std::vector<sycl::queue*> found(8);
  std::vector<std::thread> threads;
  for (sycl::queue*& one : found)
    threads.emplace_back([&] { one = &lookup_and_cache_qorin_queue_and_context(object.get()).queue; });
  for (std::thread& thread : threads)
    thread.join();
  EXPECT_THAT(found, testing::Each(found.front()));
}

void expect_refusal(void* object, const char* info) {
  try {
    lookup_and_cache_qorin_queue_and_context(object);
    FAIL() << "taken: " << info;
  } catch (const kestro::hvl::invalid_argument& refused) {
    EXPECT_STREQ(refused.what(),
                 (std::string("kestro::hvl::rng::offload: invalid argument: ") + info).c_str());
  }
}

TEST_F(Zerlin, RefusesWhatIsNoUsableInteropObject) {
  expect_refusal(nullptr, "interop");
  auto d = description();
  d.device = nullptr;
  const interop without_device(d);
  expect_refusal(without_device.get(), "interop without a device");
  // A context of other devices than the one given.
  const sycl::queue host(sycl::cpu_selector_v);
  sycl::device host_device = host.get_device();
  EXPECT_THROW(lookup_and_cache_qorin_context(context_handle_, nullptr, backend_zerlin, &host_device),
               sycl::exception);
  EXPECT_EQ(lookup_and_cache_qorin_context(context_handle_, nullptr, backend_zerlin, &device_), context_);
}

class OpenCL : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(clGetPlatformIDs(1, &platform_, nullptr), CL_SUCCESS);
    ASSERT_EQ(clGetDeviceIDs(platform_, CL_DEVICE_TYPE_ALL, 1, &device_, nullptr), CL_SUCCESS);
    context_ = clCreateContext(nullptr, 1, &device_, nullptr, nullptr, nullptr);
    queue_ = clCreateCommandQueueWithProperties(context_, device_, nullptr, nullptr);
    ASSERT_NE(queue_, nullptr);
  }
  void TearDown() override {
    clReleaseCommandQueue(queue_);
    clReleaseContext(context_);
  }

  hvl_omp_interop_description description() const {
    hvl_omp_interop_description d{};
    d.foreign_runtime = HVL_OMP_FR_OPENCL;
    d.in_order = 1;
    d.platform = platform_;
    d.device = device_;
    d.context = context_;
    d.queue = queue_;
    return d;
  }

  cl_uint queue_references() const {
    cl_uint count = 0;
    clGetCommandQueueInfo(queue_, CL_QUEUE_REFERENCE_COUNT, sizeof count, &count, nullptr);
    return count;
  }

  // OpenCL lets go of the commands of a queue, and these of the queue, some time after they are complete.
  bool references_return_to(cl_uint count) const {
    for (int tries = 0; tries != 2000 && queue_references() != count; ++tries)
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    return queue_references() == count;
  }

  cl_platform_id platform_ = nullptr;
  cl_device_id device_ = nullptr;
  cl_context context_ = nullptr;
  cl_command_queue queue_ = nullptr;
};

TEST_F(OpenCL, AnInteropObjectLeadsToAQueueThatWorks) {
  const interop object(description());
  const queue_and_context found = lookup_and_cache_qorin_queue_and_context(object.get());
  EXPECT_EQ(found.queue.get_backend(), sycl::backend::opencl);
  EXPECT_EQ(found.queue.get_context(), found.context);
  const cl_command_queue native = sycl::get_native<sycl::backend::opencl>(found.queue);
  EXPECT_EQ(native, queue_);
  clReleaseCommandQueue(native);
  EXPECT_EQ(run_kernel(found.queue), 42);
  EXPECT_EQ(&lookup_and_cache_qorin_queue_and_context(object.get()).queue, &found.queue);

  auto d = description();
  d.queue = nullptr;
  const interop without_queue(d);
  const queue_and_context own = lookup_and_cache_qorin_queue_and_context(without_queue.get());
  EXPECT_EQ(&own.context, &found.context);
  EXPECT_EQ(run_kernel(own.queue), 42);
}

TEST_F(OpenCL, TheCleanUpReleasesTheNativeObjectsAndTheCachesStartAgain) {
  const cl_uint before = queue_references();
  const interop object(description());
  lookup_and_cache_qorin_queue_and_context(object.get());
  EXPECT_GT(queue_references(), before);
  hvl_sycl_destructor();
  EXPECT_TRUE(references_return_to(before));
  EXPECT_EQ(run_kernel(lookup_and_cache_qorin_queue_and_context(object.get()).queue), 42);
  hvl_sycl_destructor();
  EXPECT_TRUE(references_return_to(before));
}

} // namespace
