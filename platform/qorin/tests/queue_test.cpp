// Devices, queues and the forms of submission.
#include <sycl/sycl.hpp>

#include <gmock/gmock.h>

#include <cstdlib>
#include <numeric>
#include <thread>

#include "code_of.hpp"

namespace {

using sycl::errc;

TEST(devices, selectors_find_the_cpu_and_the_emulated_gpu) {
  const sycl::device cpu(sycl::cpu_selector_v), gpu(sycl::gpu_selector_v);
  EXPECT_TRUE(cpu.is_cpu() && !cpu.is_gpu() && cpu.has(sycl::aspect::cpu));
  EXPECT_TRUE(gpu.is_gpu() && !gpu.is_cpu() && gpu.has(sycl::aspect::gpu) && gpu.has(sycl::aspect::emulated));
  EXPECT_EQ(sycl::device(), cpu);
  EXPECT_EQ(sycl::device(sycl::default_selector_v), cpu);
  EXPECT_EQ(sycl::device(sycl::aspect_selector<sycl::aspect::gpu>()), gpu);
  EXPECT_EQ(sycl::device(sycl::aspect_selector({}, {sycl::aspect::cpu})), gpu);
  EXPECT_EQ(sycl::device([](const sycl::device& d) { return d.is_gpu() ? 5 : 3; }), gpu);
  EXPECT_EQ(cpu.get_backend(), sycl::backend::host);
  EXPECT_EQ(gpu.get_backend(), sycl::backend::zerlin);
  EXPECT_NE(cpu, gpu);
  EXPECT_NE(cpu.get_platform(), gpu.get_platform());
  EXPECT_EQ(std::hash<sycl::device>()(gpu), std::hash<sycl::device>()(sycl::device(sycl::gpu_selector_v)));
  EXPECT_THAT(gpu.get_info<sycl::info::device::name>(), testing::HasSubstr("Emulated"));
  EXPECT_EQ(code_of([] { sycl::device{sycl::accelerator_selector_v}; }), errc::runtime);
  EXPECT_EQ(code_of([] { sycl::device([](const sycl::device&) { return -1; }); }), errc::runtime);
}

TEST(devices, an_accelerator_appears_on_request) {
  setenv("QORIN_ACCELERATOR", "1", 1);
  const sycl::device d(sycl::accelerator_selector_v);
  EXPECT_TRUE(d.is_accelerator() && !d.is_cpu() && !d.is_gpu());
  EXPECT_EQ(sycl::device::get_devices(sycl::info::device_type::accelerator), std::vector{d});
  EXPECT_TRUE(sycl::device().is_cpu());
  unsetenv("QORIN_ACCELERATOR");
  EXPECT_TRUE(sycl::device::get_devices(sycl::info::device_type::accelerator).empty());
}

TEST(contexts, hold_devices_of_one_platform) {
  const sycl::device cpu(sycl::cpu_selector_v), gpu(sycl::gpu_selector_v);
  EXPECT_EQ(code_of([&] { sycl::context({cpu, gpu}); }), errc::invalid);
  EXPECT_EQ(code_of([&] { sycl::context(std::vector<sycl::device>()); }), errc::invalid);
  EXPECT_EQ(code_of([&] { sycl::queue(sycl::context(cpu), gpu); }), errc::invalid);
  EXPECT_EQ(code_of([&] { sycl::queue(sycl::context(cpu), sycl::gpu_selector_v); }), errc::invalid);
  EXPECT_EQ(code_of([&] { sycl::queue(sycl::context(gpu), sycl::default_selector_v); }), errc::invalid);
  const sycl::context ctx(gpu);
  const sycl::queue q(ctx, sycl::gpu_selector_v);
  EXPECT_EQ(q.get_context(), ctx);
  EXPECT_EQ(q.get_device(), gpu);
  EXPECT_EQ(q.get_info<sycl::info::queue::device>(), gpu);
  EXPECT_EQ(ctx.get_info<sycl::info::context::devices>(), std::vector{gpu});
  const sycl::queue same = q;
  EXPECT_EQ(same, q);
  EXPECT_NE(sycl::queue(ctx, gpu), q);
}

TEST(contexts, are_shared_by_the_queues_of_a_device_that_are_given_none) {
  sycl::queue a, b(sycl::cpu_selector_v, [](sycl::exception_list) {}), gpu(sycl::gpu_selector_v);
  EXPECT_EQ(a.get_context(), b.get_context());
  EXPECT_NE(a.get_context(), gpu.get_context());
  EXPECT_NE(a.get_context(), sycl::context(a.get_device()));
  int* memory = sycl::malloc_shared<int>(1, a);
  EXPECT_EQ(sycl::get_pointer_type(memory, b.get_context()), sycl::usm::alloc::shared);
  EXPECT_EQ(code_of([&] { sycl::free(memory, gpu); }), errc::invalid);
  sycl::free(memory, b);
}

class queues : public testing::TestWithParam<bool> {
 protected:
  template <class T = int>
  T* shared(std::size_t count) {
    T* memory = sycl::malloc_shared<T>(count, q_);
    std::fill(memory, memory + count, T(-1));
    held_.push_back(memory);
    return memory;
  }
  ~queues() override {
    q_.wait();
    for (void* memory : held_)
      sycl::free(memory, q_);
  }
  sycl::queue q_{GetParam() ? sycl::queue{sycl::gpu_selector_v, sycl::property::queue::in_order()}
                            : sycl::queue{}};
  std::vector<void*> held_;
};

TEST_P(queues, run_range_kernels_with_every_kind_of_index) {
  constexpr int count = 10007;
  int* values = shared(count);
  const auto expect_times = [&](int factor) {
    for (int i = 0; i < count; ++i)
      ASSERT_EQ(values[i], factor * i);
  };
  q_.parallel_for(sycl::range<1>(count), [=](sycl::id<1> i) { values[i] = static_cast<int>(i); }).wait();
  expect_times(1);
  q_.parallel_for(count, [=](int i) { values[i] = 2 * i; }).wait();
  expect_times(2);
  q_.parallel_for(sycl::range(count), [=](sycl::item<1> i) {
      values[i] = 3 * static_cast<int>(i.get_linear_id());
    }).wait();
  expect_times(3);
  q_.parallel_for<class with_a_name>(sycl::range(count), [=](auto i) {
      values[i] = 4 * static_cast<int>(i);
    }).wait();
  expect_times(4);
  q_.parallel_for(sycl::range<1>(0), [=](sycl::id<1>) { values[0] = 99; }).wait();
  expect_times(4);
}

TEST_P(queues, cover_every_item_of_ranges_of_two_and_three_dimensions_once) {
  for (const sycl::range<3> extent :
       {sycl::range<3>(1, 1, 70001), {70001, 1, 1}, {3, 70001, 1}, {7, 31, 129}, {0, 5, 5}}) {
    int* count = shared(extent.size() + 1);
    std::fill(count, count + extent.size(), 0);
    q_.parallel_for(extent, [=](sycl::item<3> it) {
        if (it.get_range() == extent && it.get_linear_id() == (it[0] * extent[1] + it[1]) * extent[2] + it[2])
          ++count[it.get_linear_id()];
      }).wait();
    for (std::size_t i = 0; i < extent.size(); ++i)
      ASSERT_EQ(count[i], 1) << i;
    EXPECT_EQ(count[extent.size()], -1);
  }
  int* plane = shared(300 * 401);
  q_.parallel_for({300, 401}, [=](sycl::id<2> at) {
      plane[at[0] * 401 + at[1]] = static_cast<int>(at[0] * 1000 + at[1]);
    }).wait();
  for (int y = 0; y < 300; ++y)
    for (int x = 0; x < 401; ++x)
      ASSERT_EQ(plane[y * 401 + x], y * 1000 + x);
}

TEST_P(queues, memory_commands_and_shortcuts_take_dependencies) {
  constexpr std::size_t count = 3'000'001; // long enough to be cut into pieces
  int* a = shared(count);
  int* b = shared(count);
  sycl::event filled = q_.fill(a, 7, count);
  sycl::event doubled = q_.parallel_for(sycl::range<1>(count), filled, [=](sycl::id<1> i) { a[i] *= 2; });
  sycl::event first = q_.single_task(std::vector{doubled}, [=] { a[0] = 1; });
  sycl::event last = q_.single_task(doubled, [=] { a[count - 1] = 2; });
  sycl::event copied = q_.copy(a, b, count, {first, last});
  q_.memset(a, 0, count * sizeof(int), copied);
  q_.wait();
  EXPECT_EQ(b[0], 1);
  EXPECT_EQ(b[count - 1], 2);
  EXPECT_EQ(std::count(b + 1, b + count - 1, 14), static_cast<long>(count) - 2);
  EXPECT_EQ(std::count(a, a + count, 0), static_cast<long>(count));
  q_.memcpy(a, b, 8).wait();
  EXPECT_THAT(std::vector(a, a + 3), testing::ElementsAre(1, 14, 0));
  q_.prefetch(a, 8).wait();
  q_.mem_advise(a, 8, 0).wait();
  EXPECT_EQ(code_of([&] { q_.memcpy(nullptr, b, 8); }), errc::invalid);
  EXPECT_EQ(code_of([&] { q_.memset(nullptr, 0, 8); }), errc::invalid);
}

TEST_P(queues, a_command_group_runs_at_once_and_has_one_action) {
  const auto here = std::this_thread::get_id();
  bool called = false;
  q_.submit([&](sycl::handler& h) {
    called = std::this_thread::get_id() == here;
    h.host_task([] {});
    EXPECT_EQ(code_of([&] { h.single_task([] {}); }), errc::invalid);
  });
  EXPECT_TRUE(called);
  sycl::event barrier = q_.submit([&](sycl::handler&) {});
  barrier.wait();
  int* value = shared(1);
  EXPECT_THROW(q_.submit([&](sycl::handler& h) {
    h.single_task([=] { *value = 5; });
    throw std::runtime_error("half way");
  }),
               std::runtime_error);
  q_.wait();
  EXPECT_EQ(*value, -1) << "a group that threw was submitted";
}

TEST_P(queues, shortcuts_take_events_in_braces_before_reductions_and_kernels) {
  int* values = shared(3);
  const auto set = [=](int i, int to) { return [=] { values[i] = to; }; };
  const sycl::event a = q_.single_task(set(0, 3)), b = q_.single_task({a}, set(1, 4));
  q_.fill(values + 2, 0, 1).wait();
  const auto sum = [&] { return sycl::reduction(values + 2, sycl::plus<int>()); };
  const sycl::event once = q_.parallel_for(sycl::range<2>(1, 2), {a, b}, sum(),
                                           [=](sycl::id<2> i, auto& s) { s += values[i[1]]; });
  const sycl::event twice =
      q_.parallel_for(sycl::nd_range<1>(2, 2), {once, b}, sum(),
                      [=](sycl::nd_item<1> i, auto& s) { s += 10 * values[i.get_local_id(0)]; });
  q_.parallel_for<class in_braces>(sycl::range<1>(1), {twice}, [=](sycl::id<1>) { values[2] *= 2; }).wait();
  EXPECT_EQ(values[2], 2 * (7 + 70));
}

TEST_P(queues, a_group_that_this_queue_cannot_take_goes_to_the_secondary_one) {
  sycl::queue second(sycl::context(q_.get_device()), q_.get_device());
  const auto bundle = sycl::get_kernel_bundle<sycl::bundle_state::executable>(second.get_context());
  int* value = shared(1);
  int calls = 0;
  const auto group = [&](sycl::handler& h) {
    ++calls;
    h.use_kernel_bundle(bundle);
    h.single_task([=] { *value = 8; });
  };
  q_.submit(group, second).wait();
  EXPECT_EQ(*value, 8);
  EXPECT_EQ(calls, 2);
  second.submit(group, q_).wait();
  EXPECT_EQ(calls, 3);
  EXPECT_EQ(code_of([&] { q_.submit(group, q_); }), errc::invalid) << "neither can take it";
}

INSTANTIATE_TEST_SUITE_P(, queues, testing::Bool(),
                         [](const auto& p) { return p.param ? "gpu_in_order" : "cpu"; });

TEST(queue, in_order_takes_commands_in_order) {
  sycl::queue q{sycl::property::queue::in_order()};
  EXPECT_TRUE(q.is_in_order());
  EXPECT_TRUE(q.has_property<sycl::property::queue::in_order>());
  EXPECT_EQ(code_of([&] { q.get_property<sycl::property::queue::enable_profiling>(); }), errc::invalid);
  EXPECT_FALSE(sycl::queue().is_in_order());
  std::vector<int> order;
  for (int i = 0; i < 2000; ++i)
    q.submit([&, i](sycl::handler& h) { h.host_task([&order, i] { order.push_back(i); }); });
  q.wait();
  std::vector<int> expected(2000);
  std::iota(expected.begin(), expected.end(), 0);
  EXPECT_EQ(order, expected);
}

TEST(queue, profiling_gives_ordered_times_or_an_error) {
  namespace prof = sycl::info::event_profiling;
  sycl::queue q{sycl::property::queue::enable_profiling()};
  sycl::event e = q.submit([](sycl::handler& h) {
    h.host_task([] { std::this_thread::sleep_for(std::chrono::milliseconds(2)); });
  });
  const auto end = e.get_profiling_info<prof::command_end>();
  EXPECT_EQ(e.get_info<sycl::info::event::command_execution_status>(),
            sycl::info::event_command_status::complete);
  EXPECT_LE(e.get_profiling_info<prof::command_submit>(), e.get_profiling_info<prof::command_start>());
  EXPECT_GE(end - e.get_profiling_info<prof::command_start>(), 2'000'000u);
  sycl::event plain = sycl::queue().single_task([] {});
  EXPECT_EQ(code_of([&] { plain.get_profiling_info<prof::command_end>(); }), errc::invalid);
  EXPECT_EQ(code_of([&] { sycl::event().get_profiling_info<prof::command_start>(); }), errc::invalid);
}

} // namespace
