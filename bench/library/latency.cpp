// Small calls on an idle in-order queue, submission to completion, beside the queue's own cost.
#include <kestro/hvl/rng.hpp>

#include "library_bench.hpp"
#include "sizes.hpp"

namespace bench {
namespace {

namespace rng = kestro::hvl::rng;

template <class Submit>
void register_submission(const std::string& name, Submit submit) {
  benchmark::RegisterBenchmark(("latency/" + name).c_str(), [submit](benchmark::State& state) mutable {
    for (auto _ : state)
      submit().wait();
  })->UseRealTime();
}

void register_device(const std::string& device, const sycl::device& on) {
  sycl::queue queue(on, sycl::property::queue::in_order());
  register_submission(device + "/empty_task", [queue]() mutable {
    return queue.submit([](sycl::handler& handler) { handler.host_task([] {}); });
  });
  for (const std::int64_t n : {1, 1000}) {
    register_submission(device + "/" + std::to_string(n),
                        [n, engine = rng::philox4x32x10(queue, 1),
                         out = std::make_shared<output<float>>(cached_bytes)]() mutable {
                          return rng::generate(rng::uniform<float>(), engine, n, out->values().data());
                        });
  }
}

} // namespace

void register_latency() {
  register_device("CPU", sycl::device(sycl::cpu_selector_v));
  register_device("GPU", sycl::device(sycl::gpu_selector_v));
}

} // namespace bench
