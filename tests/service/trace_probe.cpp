// A small program that a test traces from outside. Numbers and caught exceptions go to standard error.
#include <kestro/hvl/rng.hpp>

#include "traced_device.hpp"

#include <clocale>
#include <cstdio>
#include <locale>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace {

using namespace kestro::hvl::rng;

constexpr std::int64_t n = 1234567;
constexpr int threads = 4;
constexpr int calls_per_thread = 50;

sycl::queue make_queue(std::string_view device) {
  if (device == "gpu")
    return sycl::queue(traced_device(), {sycl::property::queue::enable_profiling()});
  if (device == "untimed-gpu")
    return sycl::queue(traced_device());
  return sycl::queue(sycl::cpu_selector_v, {sycl::property::queue::enable_profiling()});
}

template <class T>
void print_digest(const T* values) {
  double sum = 0.0;
  for (std::int64_t index = 0; index != n; ++index)
    sum += static_cast<double>(values[index]) * static_cast<double>(index % 1000);
  std::fprintf(stderr, "%.17g\n", sum);
}

void usm_call(sycl::queue queue) {
  philox4x32x10 engine(queue, 777);
  float* const r = sycl::malloc_shared<float>(n, queue);
  sycl::event before = queue.submit([&](sycl::handler& handler) { handler.fill(r, -1.0f, n); });
  generate(uniform<float>(0.0f, 1.0f), engine, n, r, {before}).wait();
  print_digest(r);
  sycl::free(r, queue);
}

void buffer_call(sycl::queue queue) {
  mcg59 engine(queue, 777);
  std::vector<std::int32_t> values(n, -1);
  {
    sycl::buffer<std::int32_t, 1> r(values.data(), sycl::range<1>(n));
    generate(uniform<std::int32_t>(0, 1000), engine, n, r);
  }
  print_digest(values.data());
}

// Long enough that kernels which place the segments of the sequence go before; prints the time of the last one.
void segmented_call(sycl::queue queue) {
  constexpr std::int64_t count = 20'000'000;
  mt19937 engine(queue, 777);
  float* const r = sycl::malloc_shared<float>(count, queue);
  sycl::event last = generate(uniform<float>(0.0f, 1.0f), engine, count, r);
  const auto end = last.get_profiling_info<sycl::info::event_profiling::command_end>();
  const auto start = last.get_profiling_info<sycl::info::event_profiling::command_start>();
  std::fprintf(stderr, "%.6f\n", static_cast<double>(end - start) * 1e-6);
  sycl::free(r, queue);
}

void refused_calls(sycl::queue queue) {
  philox4x32x10 engine(queue, 1);
  float value = 0.0f;
  sycl::buffer<float, 1> r(1);
  const uniform<float> distribution(0.0f, 1.0f);
  const auto report = [](auto&& call) {
    try {
      call();
    } catch (const kestro::hvl::exception& caught) {
      std::fprintf(stderr, "%s\n", caught.what());
    }
  };
  report([&] { generate(distribution, engine, -1, &value); });
  report([&] { generate(distribution, engine, 1, static_cast<float*>(nullptr)); });
  report([&] { generate(distribution, engine, 2, r); });
  mcg31m1 other(queue, 1);
  std::uint32_t bits = 0;
  report([&] { generate(uniform_bits<std::uint32_t>(), other, 1, &bits); });
}

struct grouped_digits : std::numpunct<char> {
  char do_thousands_sep() const override { return '.'; }
  std::string do_grouping() const override { return "\3"; }
};

void calls_of_threads() {
  std::vector<std::thread> workers;
  for (int worker = 0; worker != threads; ++worker)
    workers.emplace_back([] {
      sycl::queue queue = make_queue("gpu");
      philox4x32x10 engine(queue, 1);
      float* const r = sycl::malloc_shared<float>(8, queue);
      for (int call = 0; call != calls_per_thread; ++call)
        generate(uniform<float>(0.0f, 1.0f), engine, 8, r).wait();
      sycl::free(r, queue);
    });
  for (std::thread& worker : workers)
    worker.join();
}

} // namespace

int main(int count, char** words) {
  std::string_view device = "gpu";
  for (int index = 1; index < count; ++index) {
    const std::string_view verb = words[index];
    if (verb == "cpu" || verb == "gpu" || verb == "untimed-gpu")
      device = verb;
    else if (verb == "usm")
      usm_call(make_queue(device));
    else if (verb == "buffer")
      buffer_call(make_queue(device));
    else if (verb == "segmented")
      segmented_call(make_queue(device));
    else if (verb == "refused")
      refused_calls(make_queue(device));
    else if (verb == "grouped-digits")
      std::locale::global(std::locale(std::locale(), new grouped_digits));
    else if (verb == "own-locale") // the one of the environment, as many programs choose
      std::setlocale(LC_ALL, "");
    else if (verb == "threads")
      calls_of_threads();
    else
      return 1;
  }
}
