#include "listed.hpp"

#include <fmt/format.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <limits>

namespace page_facts {
namespace {

struct timed_call {
  std::string_view name;
  std::int64_t values;
  std::function<void()> call;
  double least = std::numeric_limits<double>::infinity(); // seconds a value
};

constexpr std::int64_t timed_values = 1 << 18;

template <class Engine, class Distribution>
timed_call timed(std::string_view name, const sycl::queue& queue, void* memory,
                 const Distribution& distribution) {
  const std::int64_t n = timed_values / values_in_one(distribution);
  auto* const values = static_cast<typename Distribution::result_type*>(memory);
  return {name, timed_values, [=, engine = made<Engine>(queue)]() mutable {
            rng::generate(distribution, engine, n, values).wait();
          }};
}

template <class... Engines, class... Distributions>
void print_costs(sycl::queue queue, type_list<Engines...>, type_list<Distributions...>) {
  void* const memory = sycl::malloc_shared<std::uint64_t>(timed_values, queue);
  std::vector<timed_call> calls = {
      timed<Engines>(definition_of<Engines>::type::about.name, queue, memory, rng::uniform<float>())...,
      timed<rng::philox4x32x10>(spelling_of<Distributions>(), queue, memory, Distributions())...};
  for (int round = 0; round < 100; ++round) // in turn, as what else the machine does comes and goes
    for (timed_call& one : calls) {
      const auto start = std::chrono::steady_clock::now();
      one.call();
      const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
      one.least = std::min(one.least, time.count() / static_cast<double>(one.values));
    }
  const double unit = calls.front().least;
  fmt::print("@engine costs\n| engine | uniform float |\n|---|---|\n");
  for (std::size_t i = 0; i < calls.size(); ++i) {
    if (i == sizeof...(Engines))
      fmt::print("@distribution costs\n| distribution | a value |\n|---|---|\n");
    fmt::print("| `{}` | {:.2g} |\n", calls[i].name, calls[i].least / unit);
  }
  calls.clear();
  sycl::free(memory, queue);
}

} // namespace

void print_costs() {
  print_costs(sycl::queue(sycl::cpu_selector_v), engine_list(), distribution_list());
}

} // namespace page_facts
