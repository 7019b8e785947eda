// Small calls on an idle in-order queue, submission to completion, beside the queue's own cost; and a value of a distribution
// that is new, beside a uniform one: what is prepared for a single value.
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

template <class Distribution, class... Parameters>
void register_new(const std::string& name, const sycl::queue& queue, Parameters... parameters) {
  register_submission(
      name, [=, engine = rng::philox4x32x10(queue, 1),
             out = std::make_shared<output<typename Distribution::result_type>>(cached_bytes)]() mutable {
        return rng::generate(Distribution(parameters...), engine, 1, out->values().data());
      });
}

void register_new_distributions(const sycl::device& on) {
  const sycl::queue queue(on, sycl::property::queue::in_order());
  register_new<rng::uniform<float>>("new/uniform", queue, 0.0f, 1.0f);
  register_new<rng::bernoulli<>>("new/bernoulli", queue, 0.3);
  register_new<rng::geometric<>>("new/geometric_mean_99", queue, 0.01);
  for (const int mean : {1, 30, 100})
    register_new<rng::poisson<>>("new/poisson_" + std::to_string(mean), queue, mean);
  register_new<rng::poisson_v<>>("new/poisson_v_100", queue, std::vector<double>{100});
  register_new<rng::binomial<>>("new/binomial_20_0.3", queue, 20, 0.3);
  register_new<rng::binomial<>>("new/binomial_1000_0.1", queue, 1000, 0.1);
  register_new<rng::hypergeometric<>>("new/hypergeometric_100_30_40", queue, 100, 30, 40);
  register_new<rng::hypergeometric<>>("new/hypergeometric_mean_100", queue, 1000, 500, 200);
  register_new<rng::negative_binomial<>>("new/negative_binomial_2.5_0.3", queue, 2.5, 0.3);
  register_new<rng::negative_binomial<>>("new/negative_binomial_mean_90", queue, 10.0, 0.1);
  register_new<rng::multinomial<>>("new/multinomial_100", queue, 100, std::vector<double>{0.3, 0.7});
  register_new<rng::gamma<float>>("new/gamma_2.5", queue, 2.5f, 0.0f, 1.0f);
  register_new<rng::chi_square<float>>("new/chi_square_100", queue, 100);
  register_new<rng::beta<float>>("new/beta_2.5_1.5", queue, 2.5f, 1.5f, 0.0f, 1.0f);
  register_new<rng::gaussian_mv<float>>("new/gaussian_mv_2", queue, std::vector<float>{0, 0},
                                        std::vector<float>{1, 0.5f, 1});
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
  register_new_distributions(sycl::device(sycl::cpu_selector_v));
}

} // namespace bench
