// Skips, and single calls: what is paid before the first number.
#include <memory>

#include "engines.hpp"
#include "hvl/streams.h"
#include "hvl/streams_detail.h"
#include "sizes.hpp"

namespace bench {
namespace {

// `distance_step` other than 0 asks for another distance each time, so that nothing prepared is found again.
void skips(benchmark::State& state, std::int32_t id, std::uint64_t distance, std::uint64_t distance_step) {
  vqs_stream stream = nullptr;
  if (vqsNewStream_64(&stream, id, 1) != VQS_STATUS_OK)
    return state.SkipWithError("no stream");
  for (auto _ : state) {
    if (vqsAdvanceStream_64(stream, 1, &distance) != VQS_STATUS_OK)
      state.SkipWithError("skip failed");
    distance += distance_step;
  }
  vqsDeleteStream_64(&stream);
}

void one_number(benchmark::State& state, std::int32_t id) {
  vqs_stream stream = nullptr;
  if (vqsNewStream_64(&stream, id, 1) != VQS_STATUS_OK)
    return state.SkipWithError("no stream");
  float value = 0;
  for (auto _ : state) {
    vsRngUniform_64(0, stream, 1, &value, 0.0f, 1.0f);
    benchmark::DoNotOptimize(value);
  }
  vqsDeleteStream_64(&stream);
}

} // namespace

void register_skips() {
  constexpr std::uint64_t far = std::uint64_t{1} << 62;
  for (const auto& [engine_name, id] : engines) {
    const std::string name = engine_name;
    benchmark::RegisterBenchmark(("skip/" + name + "/2^62").c_str(), skips, id, far, 0);
    benchmark::RegisterBenchmark(("skip/" + name + "/2^62_new").c_str(), skips, id, far, 1'000'003);
    benchmark::RegisterBenchmark(("single/" + name + "/float").c_str(), one_number, id);
  }
  for (const std::uint64_t words : {1'000'000u, 3'000'000u, 6'000'000u, 12'000'000u})
    benchmark::RegisterBenchmark(("skip/mt19937/" + std::to_string(words) + "_new").c_str(), skips,
                                 VQS_ENGINE_MT19937, words, 1248);
}

} // namespace bench
