// Skips, and single calls: what is paid before the first number.
#include <memory>

#include "engines.hpp"
#include "hvl/streams.h"
#include "hvl/streams_detail.h"
#include "sizes.hpp"

namespace bench {
namespace {

// `distance_step` other than 0 asks for another distance each time, so that nothing prepared is found again.
void skips(benchmark::State& state, const hvl::engines::facts& engine, std::uint64_t distance,
           std::uint64_t distance_step) {
  vqs_stream stream = nullptr;
  if (vqsNewStream_64(&stream, engine.identifier, sample_seed(engine)) != VQS_STATUS_OK)
    return state.SkipWithError("no stream");
  for (auto _ : state) {
    if (vqsAdvanceStream_64(stream, 1, &distance) != VQS_STATUS_OK)
      state.SkipWithError("skip failed");
    distance += distance_step;
  }
  vqsDeleteStream_64(&stream);
}

void one_number(benchmark::State& state, const hvl::engines::facts& engine) {
  vqs_stream stream = nullptr;
  if (vqsNewStream_64(&stream, engine.identifier, sample_seed(engine)) != VQS_STATUS_OK)
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
  for (const hvl::engines::facts& engine : engines) {
    const std::string name = engine.name;
    benchmark::RegisterBenchmark(("skip/" + name + "/2^62").c_str(), skips, engine, far, 0);
    benchmark::RegisterBenchmark(("skip/" + name + "/2^62_new").c_str(), skips, engine, far, 1'000'003);
    benchmark::RegisterBenchmark(("single/" + name + "/float").c_str(), one_number, engine);
  }
  for (const std::uint64_t words : {1'000'000u, 3'000'000u, 6'000'000u, 12'000'000u})
    benchmark::RegisterBenchmark(("skip/mt19937/" + std::to_string(words) + "_new").c_str(), skips,
                                 hvl::engines::mt19937::about, words, 1248);
}

} // namespace bench
