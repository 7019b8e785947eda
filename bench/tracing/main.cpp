// What tracing costs the calling thread, from submission to completion on an idle in-order queue.
#include "distributions/uniform.hpp"
#include "framework/generate.hpp"

#include <hvl/core.h>
#include <kestro/hvl/rng.hpp>

#include <benchmark/benchmark.h>

#include <string>

namespace {

namespace rng = kestro::hvl::rng;
using engine_type = rng::philox4x32x10;
using distribution_type = rng::uniform<float>;

// The call behind the door.
struct dispatch_only {
  sycl::event operator()(engine_type& engine, std::int64_t n, float* r) const {
    using namespace rng::detail;
    return generate_device_dispatch<distribution_type, engine_type>(
        engine_access::queue<engine_type>(engine), distribution_type(),
        engine_access::impl<engine_type>(engine, "generate"), n, usm_output<float>{r, {}});
  }
};

struct through_the_door {
  sycl::event operator()(engine_type& engine, std::int64_t n, float* r) const {
    return rng::generate(distribution_type(), engine, n, r);
  }
};

template <class Call>
void register_call(const std::string& name, const sycl::queue& queue, int mode, std::int64_t n, Call call) {
  benchmark::RegisterBenchmark(("tracing/" + name + "/" + std::to_string(n)).c_str(),
                               [queue, mode, n, call](benchmark::State& state) {
                                 engine_type engine(queue, 1);
                                 float* const r =
                                     sycl::malloc_shared<float>(static_cast<std::size_t>(n), queue);
                                 hvl_serv_set_verbose(mode);
                                 for (auto _ : state)
                                   call(engine, n, r).wait();
                                 hvl_serv_set_verbose(0);
                                 sycl::free(r, queue);
                                 state.SetItemsProcessed(state.iterations());
                               })
      ->UseRealTime();
}

void ask_the_mode(benchmark::State& state) {
  hvl_serv_set_verbose(0);
  for (auto _ : state)
    benchmark::DoNotOptimize(kestro::hvl::gpu::verbose_mode() == 0);
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(ask_the_mode)->Name("tracing/branch");

} // namespace

int main(int count, char** arguments) {
  hvl_serv_set_verbose_output_file("/dev/null");
  for (const sycl::device& device :
       {sycl::device(sycl::cpu_selector_v), sycl::device(sycl::gpu_selector_v)}) {
    const sycl::queue queue(device,
                            {sycl::property::queue::in_order(), sycl::property::queue::enable_profiling()});
    const std::string kind = device.is_cpu() ? "CPU" : "GPU";
    for (const std::int64_t n : {1, 1000}) {
      register_call(kind + "/none", queue, 0, n, dispatch_only());
      for (int mode : {0, 1, 2})
        register_call(kind + "/mode_" + std::to_string(mode), queue, mode, n, through_the_door());
    }
  }
  benchmark::Initialize(&count, arguments);
  if (benchmark::ReportUnrecognizedArguments(count, arguments))
    return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
}
