// The public generate into device memory, submission to completion, beside what the memory takes; small calls beside the
// launch of a kernel.
#include <type_traits>

#include <kestro/hvl/rng.hpp>

#include "gpu_bench.hpp"

namespace bench {
namespace {

namespace rng = kestro::hvl::rng;

template <class T>
auto allocation(const sycl::queue& queue) {
  return [queue](std::size_t values) {
    return std::shared_ptr<T>(sycl::malloc_device<T>(values, queue),
                              [queue](T* memory) { sycl::free(memory, queue); });
  };
}

template <class Engine, class Distribution>
void register_values(const std::string& name, const sycl::queue& queue, Distribution distribution) {
  using T = typename Distribution::result_type;
  constexpr bool is_quasi_random =
      std::is_same_v<Engine, rng::sobol> || std::is_same_v<Engine, rng::niederreiter>;
  register_device_fill<T>(
      name, allocation<T>(queue),
      [distribution,
       engine = Engine(queue, is_quasi_random ? dimensions : seed)](T* memory, std::size_t values) mutable {
        rng::generate(distribution, engine, static_cast<std::int64_t>(values), memory).wait();
      });
}

template <class Engine>
void register_uniforms(const std::string& engine, const sycl::queue& queue) {
  register_values<Engine>(engine + "bits", queue, rng::bits<>());
  register_values<Engine>(engine + "uniform_float", queue, rng::uniform<float>());
  register_values<Engine>(engine + "uniform_double", queue, rng::uniform<double>());
}

// What the peer has, too.
template <class Engine>
void register_mathematics(const std::string& engine, const sycl::queue& queue) {
  register_values<Engine>(engine + "normal_float", queue,
                          rng::gaussian<float, rng::gaussian_method::box_muller2>());
  register_values<Engine>(engine + "normal_double", queue,
                          rng::gaussian<double, rng::gaussian_method::box_muller2>());
  register_values<Engine>(engine + "lognormal_float", queue,
                          rng::lognormal<float, rng::lognormal_method::box_muller2>());
  register_values<Engine>(engine + "poisson_10", queue, rng::poisson<>(10));
}

void register_small_calls(const sycl::device& device) {
  sycl::queue queue(device, sycl::property::queue::in_order());
  const auto memory = allocation<float>(queue)(1000);
  const auto submission = [](const std::string& name, auto submit) {
    benchmark::RegisterBenchmark(name.c_str(), [submit](benchmark::State& state) mutable {
      submit().wait();
      for (auto _ : state)
        submit().wait();
    })->UseRealTime();
  };
  submission("gpu/small/kernel_of_1000", [queue, memory]() mutable {
    return queue.submit([&](sycl::handler& handler) {
      handler.parallel_for(sycl::range<1>(1000), [to = memory.get()](sycl::id<1> i) { to[i[0]] = 0.5f; });
    });
  });
  for (const std::int64_t n : {1, 1000})
    submission("gpu/small/" + std::to_string(n),
               [n, memory, engine = rng::philox4x32x10(queue, seed)]() mutable {
                 return rng::generate(rng::uniform<float>(), engine, n, memory.get());
               });
}

} // namespace

void register_ours() {
  sycl::queue queue(sycl::gpu_selector_v);
  benchmark::AddCustomContext("gpu", queue.get_device().get_info<sycl::info::device::name>());
  register_device_fill<std::uint32_t>("gpu/fill", allocation<std::uint32_t>(queue),
                                      [queue](std::uint32_t* memory, std::size_t values) mutable {
                                        queue.memset(memory, 0x5a, values * sizeof *memory).wait();
                                      });
#define KESTRO_HVL_ENGINE(name) register_uniforms<rng::name>("gpu/" #name "/", queue);
#include <kestro/hvl/rng/detail/engines.def>
#undef KESTRO_HVL_ENGINE
  register_mathematics<rng::philox4x32x10>("gpu/philox4x32x10/", queue);
  register_mathematics<rng::mrg32k3a>("gpu/mrg32k3a/", queue);
  register_mathematics<rng::mt19937>("gpu/mt19937/", queue);
  register_mathematics<rng::sobol>("gpu/sobol/", queue);
  register_values<rng::philox4x32x10>("gpu/philox4x32x10/poisson_1e7", queue, rng::poisson<>(1e7));
  register_values<rng::philox4x32x10>("gpu/philox4x32x10/gamma_float_2.5", queue,
                                      rng::gamma<float>(2.5f, 0.0f, 1.0f));
  register_small_calls(queue.get_device());
}

} // namespace bench
