#include "opencl_fixture.hpp"
#include "waiting.hpp"

#include <atomic>
#include <future>
#include <thread>

namespace {

using sycl::backend;

/// A command that both sides may wait for, closed until it is opened.
class gate {
 public:
  explicit gate(cl_context context) {
    cl_int status = CL_SUCCESS;
    event_ = clCreateUserEvent(context, &status);
    expect_success(status);
  }
  gate(const gate&) = delete;
  gate& operator=(const gate&) = delete;
  ~gate() { clReleaseEvent(event_); }
  void open(cl_int status = CL_COMPLETE) { expect_success(clSetUserEventStatus(event_, status)); }
  cl_event event() const { return event_; }

 private:
  cl_event event_ = nullptr;
};

using hvl::test::let_others_run;

class opencl_queue : public opencl_fixture {
 protected:
  void SetUp() override {
    opencl_fixture::SetUp();
    if (HasFatalFailure())
      return;
    shared_ = static_cast<int*>(clSVMAlloc(context_, CL_MEM_READ_WRITE, count * sizeof(int), 0));
    ASSERT_NE(shared_, nullptr);
    for (int i = 0; i < count; ++i)
      shared_[i] = -1;
  }
  void TearDown() override {
    clSVMFree(context_, shared_);
    opencl_fixture::TearDown();
  }
  sycl::queue wrap(cl_command_queue native) {
    return sycl::make_queue<backend::opencl>(native, make_context(), [this](sycl::exception_list errors) {
      for (const std::exception_ptr& e : errors)
        errors_.push_back(e);
    });
  }
  /// An OpenCL command that fills the shared memory.
  void fill(cl_command_queue native, int value, cl_event after = nullptr) {
    expect_success(clEnqueueSVMMemFill(native, shared_, &value, sizeof value, count * sizeof(int),
                                       after != nullptr ? 1 : 0, after != nullptr ? &after : nullptr,
                                       nullptr));
    expect_success(clFlush(native));
  }

  static constexpr int count = 64;
  int* shared_ = nullptr;
  std::vector<std::exception_ptr> errors_;
};

TEST_F(opencl_queue, runs_kernels_and_host_tasks) {
  const cl_command_queue native = make_native_queue();
  sycl::queue q = wrap(native);
  EXPECT_EQ(q.get_backend(), backend::opencl);
  EXPECT_TRUE(q.is_in_order());
  EXPECT_EQ(q.get_device(), sycl::make_device<backend::opencl>(device_));
  int* const usm = sycl::malloc_shared<int>(count, q);
  int* const svm = shared_;
  q.parallel_for(sycl::range<1>(count), [=](sycl::id<1> i) { usm[i] = static_cast<int>(i) * 3; });
  q.submit([&](sycl::handler& h) {
    h.host_task([=](sycl::interop_handle interop) {
      for (int i = 0; i < count; ++i)
        svm[i] = usm[i] + 1;
      const cl_command_queue inside = interop.get_native_queue<backend::opencl>();
      svm[0] = inside == native ? 1000 : 0;
      clReleaseCommandQueue(inside);
    });
  });
  expect_success(clFinish(native));
  EXPECT_EQ(svm[0], 1000);
  for (int i = 1; i < count; ++i)
    ASSERT_EQ(svm[i], 3 * i + 1);
  sycl::free(usm, q);
}

TEST_F(opencl_queue, takes_its_place_between_native_commands) {
  const cl_command_queue native = make_native_queue();
  sycl::queue q = wrap(native);
  gate before(context_);
  std::promise<void> inside;
  std::promise<void> leave;
  int seen = -2;
  fill(native, 7, before.event());
  sycl::event task = q.submit([&](sycl::handler& h) {
    h.host_task([&] {
      seen = shared_[3];
      inside.set_value();
      leave.get_future().wait();
      shared_[4] = shared_[3] + 1;
    });
  });
  fill(native, 9);
  let_others_run();
  before.open();
  inside.get_future().wait();
  let_others_run();
  EXPECT_EQ(shared_[5], 7) << "the later native command did not wait";
  leave.set_value();
  task.wait();
  expect_success(clFinish(native));
  EXPECT_EQ(seen, 7) << "the task did not wait for the earlier native command";
  EXPECT_EQ(shared_[4], 9);
}

TEST_F(opencl_queue, keeps_its_own_commands_in_order) {
  const cl_command_queue native = make_native_queue();
  sycl::queue q = wrap(native);
  int* const at = shared_;
  *at = 0;
  for (int i = 0; i < 200; ++i) {
    q.submit([&](sycl::handler& h) { h.host_task([=] { *at = *at == i ? i + 1 : -1000; }); });
    if (i % 50 == 0)
      fill(native, i + 1);
  }
  q.wait();
  EXPECT_EQ(*at, 200);
}

TEST_F(opencl_queue, leaves_an_out_of_order_queue_unordered) {
  sycl::queue q = wrap(make_native_queue(CL_QUEUE_OUT_OF_ORDER_EXEC_MODE_ENABLE));
  EXPECT_FALSE(q.is_in_order());
  std::promise<void> second_ran;
  q.submit([&](sycl::handler& h) { h.host_task([&] { second_ran.get_future().wait(); }); });
  q.submit([&](sycl::handler& h) { h.host_task([&] { second_ran.set_value(); }); });
  q.wait();
}

struct callback_record {
  sycl::event event;
  std::atomic<int> calls{0};
  std::promise<cl_int> status;
};
void CL_CALLBACK record_callback(cl_event, cl_int status, void* data) {
  auto& record = *static_cast<callback_record*>(data);
  record.event.wait(); // a callback may wait for its own command
  if (++record.calls == 1)
    record.status.set_value(status);
}

TEST_F(opencl_queue, gives_events_that_opencl_waits_for_and_calls_back_on) {
  for (const cl_command_queue_properties features : {0, CL_QUEUE_OUT_OF_ORDER_EXEC_MODE_ENABLE}) {
    sycl::queue q = wrap(make_native_queue(features));
    std::promise<void> leave;
    bool ran = false;
    callback_record record;
    record.event = q.submit([&](sycl::handler& h) {
      h.host_task([&] {
        leave.get_future().wait();
        ran = true;
      });
    });
    EXPECT_EQ(record.event.get_backend(), backend::opencl);
    const std::vector<cl_event> events = sycl::get_native<backend::opencl>(record.event);
    ASSERT_EQ(events.size(), 1u);
    cl_int status = CL_COMPLETE;
    expect_success(
        clGetEventInfo(events[0], CL_EVENT_COMMAND_EXECUTION_STATUS, sizeof status, &status, nullptr));
    EXPECT_NE(status, CL_COMPLETE);
    expect_success(clSetEventCallback(events[0], CL_COMPLETE, record_callback, &record));
    EXPECT_EQ(record.calls, 0);
    leave.set_value();
    expect_success(clWaitForEvents(1, events.data()));
    EXPECT_TRUE(ran);
    EXPECT_EQ(record.status.get_future().get(), CL_COMPLETE);
    q.wait();
    EXPECT_EQ(record.calls, 1);
    // The event of a command that is long complete is complete, too.
    const std::vector<cl_event> again = sycl::get_native<backend::opencl>(record.event);
    EXPECT_EQ(again, events);
    expect_success(clWaitForEvents(1, again.data()));
    clReleaseEvent(again[0]);
    clReleaseEvent(events[0]);
  }
}

TEST_F(opencl_queue, waits_for_events_of_opencl) {
  const sycl::context context = make_context();
  sycl::queue host; // of another backend: one graph orders all
  gate first(context_);
  gate second(context_);
  sycl::event both = sycl::make_event<backend::opencl>({first.event(), second.event()}, context);
  EXPECT_EQ(both.get_backend(), backend::opencl);
  std::atomic<int> opened{0};
  int seen = -1;
  sycl::event task = host.submit([&](sycl::handler& h) {
    h.depends_on(both);
    h.host_task([&] { seen = opened; });
  });
  opened = 1;
  first.open();
  let_others_run();
  EXPECT_NE(both.get_info<sycl::info::event::command_execution_status>(),
            sycl::info::event_command_status::complete);
  opened = 2;
  second.open();
  task.wait();
  EXPECT_EQ(seen, 2);
  const std::vector<cl_event> events = sycl::get_native<backend::opencl>(both);
  EXPECT_EQ(events, (std::vector<cl_event>{first.event(), second.event()}));
  for (cl_event e : events)
    clReleaseEvent(e);
}

TEST_F(opencl_queue, hands_native_errors_to_the_handler_and_goes_on) {
  std::vector<std::error_code> codes;
  const sycl::context context = make_context([&](sycl::exception_list errors) {
    for (const std::exception_ptr& e : errors)
      codes.push_back(code_thrown_by([&] { std::rethrow_exception(e); }));
  });
  gate broken(context_);
  sycl::event event = sycl::make_event<backend::opencl>({broken.event()}, context);
  sycl::queue host;
  bool ran = false;
  sycl::event task = host.submit([&](sycl::handler& h) {
    h.depends_on(event);
    h.host_task([&] { ran = true; });
  });
  broken.open(-42);
  task.wait();
  EXPECT_TRUE(ran);
  event.wait_and_throw();
  EXPECT_EQ(codes, (std::vector<std::error_code>{
                       std::error_code(-42, sycl::error_category_for<backend::opencl>())}));
}

TEST_F(opencl_queue, completes_its_event_when_the_command_throws) {
  const cl_command_queue native = make_native_queue();
  sycl::queue q = wrap(native);
  sycl::event thrown = q.submit([&](sycl::handler& h) { h.host_task([] { throw 5; }); });
  const std::vector<cl_event> events = sycl::get_native<backend::opencl>(thrown);
  expect_success(clWaitForEvents(1, events.data()));
  clReleaseEvent(events[0]);
  fill(native, 3); // the native queue goes on
  expect_success(clFinish(native));
  EXPECT_EQ(shared_[0], 3);
  EXPECT_TRUE(errors_.empty());
  q.wait_and_throw();
  EXPECT_EQ(errors_.size(), 1u);
}

TEST_F(opencl_queue, profiles_as_the_native_queue_does) {
  sycl::queue q = wrap(make_native_queue(CL_QUEUE_PROFILING_ENABLE));
  sycl::event e = q.single_task([] {});
  using namespace sycl::info::event_profiling;
  EXPECT_LE(e.get_profiling_info<command_submit>(), e.get_profiling_info<command_start>());
  EXPECT_LE(e.get_profiling_info<command_start>(), e.get_profiling_info<command_end>());
  sycl::event unprofiled = wrap(make_native_queue()).single_task([] {});
  EXPECT_EQ(code_thrown_by([&] { unprofiled.get_profiling_info<command_end>(); }),
            make_error_code(sycl::errc::invalid));
}

TEST_F(opencl_queue, serves_many_threads_and_both_sides_at_once) {
  const cl_command_queue native = make_native_queue();
  sycl::queue q = wrap(native);
  constexpr int threads = 4;
  constexpr int rounds = 50;
  int sum = 0; // unguarded: the order of the queue guards it
  std::atomic<int> called{0};
  std::vector<std::thread> pool;
  for (int t = 0; t < threads; ++t)
    pool.emplace_back([&, t] {
      for (int i = 0; i < rounds; ++i) {
        const sycl::event e = q.submit([&](sycl::handler& h) { h.host_task([&] { ++sum; }); });
        const std::vector<cl_event> events = sycl::get_native<backend::opencl>(e);
        expect_success(clSetEventCallback(
            events[0], CL_COMPLETE, [](cl_event, cl_int, void* n) { ++*static_cast<std::atomic<int>*>(n); },
            &called));
        clReleaseEvent(events[0]);
        if (i % 5 == t)
          fill(native, i);
        if (i % 10 == t)
          q.wait();
      }
    });
  for (std::thread& thread : pool)
    thread.join();
  q.wait();
  expect_success(clFinish(native));
  EXPECT_EQ(sum, threads * rounds);
  while (called < threads * rounds)
    std::this_thread::yield();
}

TEST_F(opencl_queue, releases_native_queues_and_events) {
  const cl_command_queue native = make_native_queue();
  const auto queue_references = [&] {
    cl_uint held = 0;
    expect_success(clGetCommandQueueInfo(native, CL_QUEUE_REFERENCE_COUNT, sizeof held, &held, nullptr));
    return held;
  };
  cl_event last = nullptr;
  const auto event_references = [&] {
    cl_uint held = 0;
    expect_success(clGetEventInfo(last, CL_EVENT_REFERENCE_COUNT, sizeof held, &held, nullptr));
    return held;
  };
  {
    sycl::queue q = wrap(native);
    EXPECT_GE(queue_references(), 2u);
    last = sycl::get_native<backend::opencl>(q.single_task([] {})).at(0);
    EXPECT_GE(event_references(), 2u);
    q.wait();
  }
  expect_success(clFinish(native));
  // OpenCL's own threads let go of the last commands when they get to it.
  for (int looks = 0; (queue_references() != 1 || event_references() != 1) && looks < 1000; ++looks)
    let_others_run();
  EXPECT_EQ(queue_references(), 1u);
  EXPECT_EQ(event_references(), 1u);
  clReleaseEvent(last);
}

} // namespace
