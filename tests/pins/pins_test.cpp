// Every number that the library makes, pinned: checksums of fixed runs of every engine and mode with every distribution,
// kept in checksums.txt, hold on every device, in both forms, under every instruction set and for several splits.
// With --write FILE the program writes the checksums of this build instead of checking them.
#include <zlib.h>

#include <cstdio>
#include <fstream>
#include <functional>
#include <iostream>
#include <map>
#include <numeric>
#include <string_view>

#include <gmock/gmock.h>

#include "support.hpp"

namespace kestro::hvl::rng::test {
namespace {

// Parameters that all take part: a shift, a scale and a shape none of which is 0 or 1 or a power of two.
template <class T, class M>
uniform<T, M> pinned(uniform<T, M>) {
  if constexpr (std::is_floating_point_v<T>)
    return {T(-1.7), T(2.9)};
  else
    return {static_cast<T>(std::is_signed_v<T> ? -70'001 : 70'001), T(2'000'000'011)};
}
template <class T>
uniform_bits<T> pinned(uniform_bits<T> d) {
  return d;
}
template <class T>
bits<T> pinned(bits<T> d) {
  return d;
}
template <class T, class M>
lognormal<T, M> pinned(lognormal<T, M>) {
  return {T(0.7), T(0.6), T(-3.1), T(1.9)};
}
template <class T, class M>
weibull<T, M> pinned(weibull<T, M>) {
  return {T(1.3), T(-3.1), T(1.9)};
}
template <class T, class M>
gamma<T, M> pinned(gamma<T, M>) {
  return {T(1.3), T(-3.1), T(1.9)};
}
template <class T, class M>
beta<T, M> pinned(beta<T, M>) {
  return {T(0.7), T(2.3), T(-3.1), T(1.9)};
}
template <class T, class M>
gaussian_mv<T, M> pinned(gaussian_mv<T, M>) {
  return {{T(-3.1), T(0.7), T(1.9)}, {T(1.3), T(-0.4), T(0.6), T(2.1), T(0.3), T(-1.7)}};
}
template <class T, class M>
chi_square<T, M> pinned(chi_square<T, M>) {
  return chi_square<T, M>(7);
}
template <class T>
geometric<T> pinned(geometric<T>) {
  return geometric<T>(0.07);
}
template <class T>
bernoulli<T> pinned(bernoulli<T>) {
  return bernoulli<T>(0.07);
}
template <class T>
poisson<T> pinned(poisson<T>) {
  return poisson<T>(37.7);
}
template <class T>
poisson_v<T> pinned(poisson_v<T>) { // one mean, so that splits change nothing
  return poisson_v<T>({37.7});
}
template <class T>
binomial<T> pinned(binomial<T>) {
  return {71, 0.37};
}
template <class T>
multinomial<T> pinned(multinomial<T>) {
  return {171, {0.37, 0.0, 0.05, 0.58}};
}
template <class T>
hypergeometric<T> pinned(hypergeometric<T>) {
  return {171, 37, 91};
}
template <class T>
negative_binomial<T> pinned(negative_binomial<T>) {
  return {2.3, 0.17};
}
template <template <class, class> class Distribution, class T, class M>
Distribution<T, M> pinned(Distribution<T, M>) { // the families of location and scale
  return {T(-3.1), T(1.9)};
}

// A pair of values made at once is cut by no call but the last.
template <class Distribution>
constexpr bool in_pairs = false;
template <class T>
constexpr bool in_pairs<gaussian<T, gaussian_method::box_muller2>> = true;
template <class T, class M>
constexpr bool in_pairs<gaussian_mv<T, M>> = true;
template <class T>
constexpr bool in_pairs<lognormal<T, lognormal_method::box_muller2>> = true;
template <class T>
constexpr bool in_pairs<lognormal<T, lognormal_method::box_muller2_accurate>> = true;
template <class M>
constexpr bool in_pairs<gamma<double, M>> = true;
template <class M>
constexpr bool in_pairs<chi_square<double, M>> = true;

// One way to the numbers.
struct way {
  const char* name;
  bool on_gpu, in_usm;
  std::vector<std::int64_t> calls; // sizes of the first calls, the last one makes the rest
};

// Sizes around the widths of vectors, blocks and work-items, which leave an engine in mid-block.
const std::vector<std::int64_t> split = {1, 3, 2, 64, 1001, 5, 7001, 0, 623};

const std::vector<way> ways = {{"CPU, USM", false, true, {}},     {"CPU, USM, split", false, true, split},
                               {"CPU, buffer", false, false, {}}, {"CPU, buffer, split", false, false, split},
                               {"GPU, USM", true, true, {}},      {"GPU, USM, split", true, true, split},
                               {"GPU, buffer", true, false, {}},  {"GPU, buffer, split", true, false, split}};

// Null where there is no such device.
sycl::queue* find_queue(const way& w) {
  static std::vector<device_case> all = devices();
  const auto found = std::find_if(all.begin(), all.end(), [&](const device_case& device) {
    return std::string_view(device.name) == (w.on_gpu ? "GPU" : "CPU");
  });
  return found == all.end() ? nullptr : &found->queue;
}
sycl::queue& queue_of(const way& w) {
  return *find_queue(w);
}

template <class Distribution, class Engine>
std::string checksum(const Distribution& distribution, Engine engine, std::int64_t n, const way& w) {
  auto calls = w.calls;
  if (in_pairs<Distribution>)
    for (std::int64_t& call : calls)
      call += call % 2;
  calls.push_back(std::accumulate(calls.begin(), calls.end(), n, std::minus()));
  uLong crc = 0;
  for (const std::int64_t call : calls) {
    const auto values = w.in_usm || call == 0 ? usm_values(distribution, engine, queue_of(w), call, 1)
                                              : buffer_values(distribution, engine, call);
    if (call != 0) // zlib starts anew at a null pointer
      crc = crc32_z(crc, reinterpret_cast<const Bytef*>(values.data()), values.size() * sizeof(values[0]));
  }
  char text[9];
  std::snprintf(text, sizeof text, "%08lx", crc);
  return text;
}

// A line of the file: engine, number of values, distribution; and what stands behind them.
struct pin {
  std::string key;
  std::int64_t n;
  std::function<std::string(const way&)> value;
};

// Several blocks of every engine; enough to be cut over threads; and output that streams past the caches.
constexpr std::int64_t some = 20'011, threads = 100'003, streamed = 9'000'011;

template <class Engine>
void add_pins(std::vector<pin>& pins, const std::string& name, Engine (*make)(const sycl::queue&)) {
  const auto add = [&](const char* distribution_name, auto distribution, std::int64_t n) {
    pins.push_back(
        {name + ' ' + std::to_string(n) + ' ' + distribution_name, n, [=](const way& w) -> std::string {
           try {
             return checksum(distribution, make(queue_of(w)), n, w);
           } catch (const unimplemented&) {
             return "unimplemented";
           } catch (const invalid_argument&) {
             return "invalid_argument";
           }
         }});
  };
#define KESTRO_HVL_DISTRIBUTION(family, ...) add(#__VA_ARGS__, pinned(__VA_ARGS__()), some);
#include <kestro/hvl/rng/detail/distributions.def>
#undef KESTRO_HVL_DISTRIBUTION
  for (const std::int64_t n : {threads, streamed})
    add("uniform<float, uniform_method::standard>", pinned(uniform<float>()), n);
  add("gamma<float, gamma_method::marsaglia> below 1", gamma<float>(0.3f, -3.1f, 1.9f), some);
  add("gamma<double, gamma_method::marsaglia> below 1", gamma<double>(0.3, -3.1, 1.9), some);
  add("beta<double> of small shapes", beta<double>(0.3, 0.4, -3.1, 1.9), some);
  add("beta<double> of large shapes", beta<double>(3e7, 4e7, -3.1, 1.9), some);
  add("poisson<int> by rejection", poisson<int>(3e6), some);
  add("binomial<int> by rejection", binomial<int>(2147483647, 0.37), some);
  add("multinomial<int> of many trials", multinomial<int>(2147483647, {0.37, 0.1, 0.53}), some);
  add("hypergeometric<int> by rejection", hypergeometric<int>(2147483647, 1000000000, 99999999), some);
  add("negative_binomial<int> by a mixture", negative_binomial<int>(0.3, 1e-3), some);
  add("poisson_v<int> of a small mean", poisson_v<int>({3.3}), some);
  add("gaussian<double, gaussian_method::box_muller2>",
      pinned(gaussian<double, gaussian_method::box_muller2>()), threads);
}

std::vector<pin> all_pins() {
  std::vector<pin> pins;
#define KESTRO_HVL_ENGINE(name)                                                                              \
  if (facts_of<name>().is_reproducible)                                                                      \
    add_pins<name>(pins, #name, [](const sycl::queue& q) { return seeded<name>(q, 20211113); });
#include <kestro/hvl/rng/detail/engines.def>
#undef KESTRO_HVL_ENGINE
  add_pins<mrg32k3a>(pins, "mrg32k3a/optimal",
                     [](const sycl::queue& q) { return mrg32k3a(q, 20211113, mrg32k3a_mode::optimal()); });
  add_pins<mrg32k3a>(pins, "mrg32k3a/custom{1000}",
                     [](const sycl::queue& q) { return mrg32k3a(q, 20211113, mrg32k3a_mode::custom{1000}); });
  return pins;
}

std::map<std::string, std::string> kept() {
  std::ifstream file(CHECKSUMS_FILE);
  std::map<std::string, std::string> values;
  for (std::string line; std::getline(file, line);)
    if (!line.empty() && line[0] != '#') {
      const auto colon = line.rfind(": ");
      const bool is_new = values.emplace(line.substr(0, colon), line.substr(colon + 2)).second;
      EXPECT_TRUE(is_new) << line;
    }
  return values;
}

TEST(pins, are_those_of_the_lists) {
  std::vector<std::string> expected, actual;
  for (const pin& p : all_pins())
    expected.push_back(p.key);
  for (const auto& [key, value] : kept())
    actual.push_back(key);
  EXPECT_THAT(actual, testing::UnorderedElementsAreArray(expected));
}

TEST(pins, hold_on_every_way_to_the_numbers) {
  const auto expected = kept();
  const auto pins = all_pins();
  std::size_t moved = 0;
  bool gpu_done = false; // its kernels have one instruction set
  under_every_instruction_set([&] {
    for (const pin& p : pins)
      for (const way& w : ways) {
        if (find_queue(w) == nullptr || (w.on_gpu && gpu_done) ||
            (p.n == streamed && !(w.in_usm && !w.calls.empty())))
          continue;
        if (const std::string value = p.value(w); value != expected.at(p.key)) {
          ADD_FAILURE() << p.key << ": " << value << ", kept is " << expected.at(p.key) << " (" << w.name
                        << ')';
          ++moved;
          break;
        }
      }
    gpu_done = true;
  });
  EXPECT_EQ(moved, 0u) << "if numbers were meant to change: ./dev pins, and say so in CHANGELOG.md";
}

int write(const char* file_name) {
  std::ofstream file(file_name);
  file << "# Checksums (CRC-32) of the bytes of fixed runs: engine, number of values, distribution.\n"
          "# Written by ./dev pins. A changed line is a changed number for every user: it belongs in "
          "CHANGELOG.md.\n";
  for (const pin& p : all_pins())
    file << p.key << ": " << p.value(ways[0]) << '\n';
  file.close();
  return file && !testing::UnitTest::GetInstance()->Failed() ? 0 : 1;
}

} // namespace
} // namespace kestro::hvl::rng::test

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  if (argc == 3 && std::string_view(argv[1]) == "--write")
    return kestro::hvl::rng::test::write(argv[2]);
  return RUN_ALL_TESTS();
}
