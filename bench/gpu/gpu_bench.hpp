// Fills of memory of a GPU.
#pragma once

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace bench {

inline constexpr std::size_t output_bytes = std::size_t{1}
                                            << 30; // fits no cache, and a launch is nothing beside it

inline constexpr std::uint32_t seed = 20211113;
inline constexpr std::uint32_t dimensions = 10; // of quasi-random engines

// fill(memory, values) returns when the memory is full; `allocate` gives a std::shared_ptr to that many values. Speed is
// reported in values and bytes.
template <class T, class Allocate, class Fill>
void register_device_fill(const std::string& name, Allocate allocate, Fill fill) {
  benchmark::RegisterBenchmark(name.c_str(), [allocate, fill](benchmark::State& state) mutable {
    constexpr std::size_t values = output_bytes / sizeof(T) / (2 * dimensions) * (2 * dimensions);
    const std::shared_ptr<T> memory = allocate(values);
    if (!memory) {
      state.SkipWithError("no memory on the device");
      return;
    }
    fill(memory.get(), values); // kernels are compiled and tables built when they are first needed
    for (auto _ : state)
      fill(memory.get(), values);
    const auto done = static_cast<std::int64_t>(state.iterations()) * static_cast<std::int64_t>(values);
    state.SetItemsProcessed(done);
    state.SetBytesProcessed(done * static_cast<std::int64_t>(sizeof(T)));
  })->UseRealTime();
}

void register_ours();
void register_peers(); // none where there is no cuRAND, or no GPU that it runs on

} // namespace bench
