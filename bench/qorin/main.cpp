// What the SYCL runtime itself costs: submission to completion, chains, kernels, work-groups.
#include <sycl/sycl.hpp>

#include <benchmark/benchmark.h>
#include <oneapi/tbb/task_group.h>

#include <cstring>
#include <future>
#include <vector>

namespace {

constexpr std::size_t values = 64 << 10;

sycl::queue in_order_queue() {
  return sycl::queue{sycl::gpu_selector_v, sycl::property::queue::in_order()};
}

void empty_host_task(benchmark::State& state) {
  sycl::queue q = in_order_queue();
  for (auto _ : state)
    q.submit([](sycl::handler& h) { h.host_task([] {}); }).wait();
}
BENCHMARK(empty_host_task)->Name("qorin/latency/host_task")->UseRealTime();

void empty_out_of_order(benchmark::State& state) {
  sycl::queue q;
  for (auto _ : state)
    q.submit([](sycl::handler& h) { h.host_task([] {}); }).wait();
}
BENCHMARK(empty_out_of_order)->Name("qorin/latency/host_task_out_of_order")->UseRealTime();

void small_kernel(benchmark::State& state) {
  sycl::queue q = in_order_queue();
  std::vector<float> data(1000);
  for (auto _ : state)
    q.parallel_for(data.size(), [p = data.data()](sycl::id<1> i) { p[i] = static_cast<float>(i[0]); }).wait();
}
BENCHMARK(small_kernel)->Name("qorin/latency/kernel_of_1000")->UseRealTime();

void buffer_kernel(benchmark::State& state) {
  sycl::queue q = in_order_queue();
  sycl::buffer<float> data{sycl::range<1>(1000)};
  for (auto _ : state)
    q.submit([&](sycl::handler& h) {
       sycl::accessor a(data, h, sycl::write_only, sycl::no_init);
       h.parallel_for(data.get_range(), [=](sycl::id<1> i) { a[i] = static_cast<float>(i[0]); });
     }).wait();
}
BENCHMARK(buffer_kernel)->Name("qorin/latency/buffer_kernel_of_1000")->UseRealTime();

// What else a program would use to run a function elsewhere and wait for it.
void tbb_task_group(benchmark::State& state) {
  oneapi::tbb::task_group group;
  for (auto _ : state)
    group.run_and_wait([] {});
}
BENCHMARK(tbb_task_group)->Name("tbb/latency/task_group")->UseRealTime();

void std_async(benchmark::State& state) {
  for (auto _ : state)
    std::async(std::launch::async, [] {}).wait();
}
BENCHMARK(std_async)->Name("std/latency/async")->UseRealTime();

void chain(benchmark::State& state) {
  sycl::queue q = in_order_queue();
  constexpr int length = 1000;
  for (auto _ : state) {
    for (int i = 0; i < length; ++i)
      q.submit([](sycl::handler& h) { h.host_task([] {}); });
    q.wait();
  }
  state.SetItemsProcessed(state.iterations() * length);
}
BENCHMARK(chain)->Name("qorin/throughput/in_order_chain")->UseRealTime();

void vector_kernel(benchmark::State& state) {
  sycl::queue q = in_order_queue();
  std::vector<float> data(values, 1.0f);
  for (auto _ : state)
    q.parallel_for(values, [p = data.data()](sycl::id<1> i) {
       float x = p[i];
       for (int k = 0; k < 64; ++k)
         x = x * 0.999f + 0.001f;
       p[i] = x;
     }).wait();
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(values));
}
BENCHMARK(vector_kernel)->Name("qorin/throughput/arithmetic_kernel")->UseRealTime();

void plain_loop(benchmark::State& state) {
  std::vector<float> data(values, 1.0f);
  for (auto _ : state) {
    for (float& each : data) {
      float x = each;
      for (int k = 0; k < 64; ++k)
        x = x * 0.999f + 0.001f;
      each = x;
    }
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(values));
}
BENCHMARK(plain_loop)->Name("loop/throughput/arithmetic")->UseRealTime();

void work_groups(benchmark::State& state) {
  sycl::queue q = in_order_queue();
  std::vector<int> data(values, 1);
  const auto barriers = static_cast<int>(state.range(0));
  for (auto _ : state)
    q.parallel_for(sycl::nd_range<1>(values, 64), [p = data.data(), barriers](sycl::nd_item<1> it) {
       for (int b = 0; b < barriers; ++b)
         it.barrier();
       p[it.get_global_id(0)] += 1;
     }).wait();
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(values));
}
BENCHMARK(work_groups)->Name("qorin/throughput/nd_range_barriers")->Arg(0)->Arg(1)->Arg(2)->UseRealTime();

void copy(benchmark::State& state) {
  sycl::queue q = in_order_queue();
  const auto bytes = static_cast<std::size_t>(state.range(0));
  char* from = sycl::malloc_shared<char>(bytes, q);
  char* to = sycl::malloc_shared<char>(bytes, q);
  std::memset(from, 1, bytes);
  for (auto _ : state)
    q.memcpy(to, from, bytes).wait();
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes));
  sycl::free(from, q);
  sycl::free(to, q);
}
BENCHMARK(copy)->Name("qorin/throughput/memcpy")->Arg(64 << 10)->Arg(128 << 20)->UseRealTime();

} // namespace

BENCHMARK_MAIN();
