// The two sizes of output that the benchmarks fill, and the registration of a benchmark of a fill.
#pragma once

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <span>
#include <string>

namespace bench {

inline constexpr std::size_t cached_bytes = std::size_t{256} << 10; // fits the second cache
inline constexpr std::size_t memory_bytes = std::size_t{256} << 20; // fits no cache

struct aligned_free {
  void operator()(void* p) const noexcept { ::operator delete (p, std::align_val_t{4096}); }
};

// Output memory, touched once so that no page is new when the clock runs.
template <class T>
class output {
 public:
  explicit output(std::size_t bytes)
      : memory_(static_cast<T*>(::operator new (bytes, std::align_val_t{4096}))), count_(bytes / sizeof(T)) {
    for (std::size_t i = 0; i < count_; i += 4096 / sizeof(T))
      memory_.get()[i] = T{1};
  }
  std::span<T> values() const { return {memory_.get(), count_}; }

 private:
  std::unique_ptr<T, aligned_free> memory_;
  std::size_t count_;
};

// `fill` writes the whole span; speed is reported in values and bytes. Cached output, made by one thread, is
// measured in processor time, which other programs on the machine disturb less; output beyond the caches in
// real time.
template <class T, class Fill>
void register_fill(const std::string& name, std::size_t bytes, Fill fill) {
  auto* registered =
      benchmark::RegisterBenchmark(name.c_str(), [fill, bytes](benchmark::State& state) mutable {
        const output<T> out(bytes);
        const std::span<T> values = out.values();
        for (auto _ : state) {
          fill(values);
          benchmark::DoNotOptimize(values.data());
          benchmark::ClobberMemory();
        }
        const auto done =
            static_cast<std::int64_t>(state.iterations()) * static_cast<std::int64_t>(values.size());
        state.SetItemsProcessed(done);
        state.SetBytesProcessed(done * static_cast<std::int64_t>(sizeof(T)));
      });
  if (bytes > cached_bytes)
    registered->UseRealTime();
}

void register_bandwidth();
void register_ours();
void register_peers();
void register_skips();

} // namespace bench
