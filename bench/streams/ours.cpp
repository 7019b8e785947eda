// Every engine through the stream library: cached output on one thread, and output beyond the caches on all.
#include <oneapi/tbb/global_control.h>

#include <memory>
#include <stdexcept>

#include "engines.hpp"
#include "hvl/core.h"
#include "hvl/streams.h"
#include "sizes.hpp"

namespace bench {
namespace {

void check(int status) {
  if (status != VQS_STATUS_OK)
    throw std::runtime_error(vqsStatusText(status));
}

int generate(vqs_stream stream, std::span<std::uint32_t> r) {
  return viRngUniformBits_64(0, stream, static_cast<std::int64_t>(r.size()), r.data());
}
int generate(vqs_stream stream, std::span<float> r) {
  return vsRngUniform_64(0, stream, static_cast<std::int64_t>(r.size()), r.data(), 0.0f, 1.0f);
}
int generate(vqs_stream stream, std::span<double> r) {
  return vdRngUniform_64(0, stream, static_cast<std::int64_t>(r.size()), r.data(), 0.0, 1.0);
}

// A stream that lives as long as a benchmark's function.
std::shared_ptr<void> new_stream(const hvl::engines::facts& engine, std::uint64_t seed) {
  vqs_stream stream = nullptr;
  check(vqsNewStream_64(&stream, engine.identifier, seed));
  return {stream, [](void* s) { vqsDeleteStream_64(&s); }};
}

std::shared_ptr<void> new_stream(const hvl::engines::facts& engine) {
  return new_stream(engine, sample_seed(engine));
}

template <class T>
void register_kind(const std::string& kind, const hvl::engines::facts& engine) {
  const std::string name = "ours/" + std::string(engine.name) + "/" + kind;
  for (const int isa : {HVL_ISA_SCALAR, HVL_ISA_AVX2, HVL_ISA_AVX512}) {
    if (!hvl_serv_isa_supported(isa))
      continue;
    register_fill<T>(name + "/" + hvl_serv_isa_name(isa), cached_bytes,
                     [isa, stream = new_stream(engine)](std::span<T> out) {
                       hvl_serv_set_isa(isa);
                       check(generate(stream.get(), out));
                       hvl_serv_set_isa(-1);
                     });
  }
  const auto best = [&](std::shared_ptr<void> stream) {
    return [stream = std::move(stream)](std::span<T> out) { check(generate(stream.get(), out)); };
  };
  register_fill<T>(name, cached_bytes, best(new_stream(engine)));
  register_fill<T>(name + "/memory", memory_bytes, best(new_stream(engine)));
  register_fill<T>(name + "/1000", 1000 * sizeof(T), best(new_stream(engine)));
  if (engine.is_quasi_random)
    for (const std::uint64_t dimensions : {1u, 10u, 1000u})
      register_fill<T>(name + "/dimensions:" + std::to_string(dimensions), cached_bytes,
                       best(new_stream(engine, dimensions)));
}

} // namespace

void register_ours() {
  for (const hvl::engines::facts& engine : engines) {
    register_kind<std::uint32_t>("bits", engine);
    register_kind<float>("float", engine);
    register_kind<double>("double", engine);
  }
  const auto in_mid_block = new_stream(hvl::engines::mt19937::about);
  check(vqsSkipAheadStream_64(in_mid_block.get(), 3));
  register_fill<float>("ours/mt19937/float/memory_in_mid_block", memory_bytes,
                       [in_mid_block](std::span<float> out) { check(generate(in_mid_block.get(), out)); });
}

} // namespace bench
