// The public generate on every device: output beyond the caches, all threads, submission to completion.
#include <kestro/hvl/rng.hpp>

#include "library_bench.hpp"
#include "sizes.hpp"

namespace bench {
namespace {

namespace rng = kestro::hvl::rng;

// Of a quasi-random engine it is the number of dimensions.
template <class Engine>
constexpr std::uint32_t sample_seed =
    std::is_same_v<Engine, rng::sobol> || std::is_same_v<Engine, rng::niederreiter> ? 10 : 20211113;

template <class Distribution, class Engine>
void register_pair(const std::string& name, const sycl::queue& queue, const Distribution& distribution) {
  using T = typename Distribution::result_type;
  register_fill<T>(
      name, memory_bytes,
      [distribution, engine = Engine(queue, sample_seed<Engine>)](std::span<T> out) mutable {
        rng::generate(distribution, engine, static_cast<std::int64_t>(out.size()), out.data()).wait();
      });
}

template <class Engine>
void register_engine(const std::string& engine, const std::string& device, const sycl::queue& queue) {
  const std::string prefix = "generate/" + device + "/" + engine + "/";
  register_pair<rng::bits<>, Engine>(prefix + "bits", queue, {});
  register_pair<rng::uniform<float>, Engine>(prefix + "float", queue, {});
  register_pair<rng::uniform<double>, Engine>(prefix + "double", queue, {});
}

// The distributions whose mathematics shows.
void register_mathematics(const std::string& device, const sycl::queue& queue) {
  const std::string prefix = "generate/" + device + "/philox4x32x10/";
  register_pair<rng::gaussian<float>, rng::philox4x32x10>(prefix + "gaussian_float", queue, {});
  register_pair<rng::gaussian<double>, rng::philox4x32x10>(prefix + "gaussian_double", queue, {});
  register_pair<rng::exponential<float>, rng::philox4x32x10>(prefix + "exponential_float", queue, {});
  // Shapes of at least 1 reject; one below takes a power too.
  register_pair<rng::gamma<float>, rng::philox4x32x10>(prefix + "gamma_float_2.5", queue, {2.5f, 0.0f, 1.0f});
  register_pair<rng::gamma<float>, rng::philox4x32x10>(prefix + "gamma_float_0.5", queue, {0.5f, 0.0f, 1.0f});
  register_pair<rng::geometric<>, rng::philox4x32x10>(prefix + "geometric", queue, rng::geometric<>(0.1));
}

void register_device(const std::string& device, const sycl::queue& queue) {
  register_mathematics(device, queue);
#define KESTRO_HVL_ENGINE(name) register_engine<rng::name>(#name, device, queue);
#include <kestro/hvl/rng/detail/engines.def>
#undef KESTRO_HVL_ENGINE
}

} // namespace

void register_generate() {
  register_device("CPU", sycl::queue(sycl::cpu_selector_v));
  register_device("GPU", sycl::queue(sycl::gpu_selector_v));
}

} // namespace bench
