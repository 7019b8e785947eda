// What the memory takes: the limit of every generator out of cache.
#include <emmintrin.h>
#include <oneapi/tbb/parallel_for.h>
#include <oneapi/tbb/task_arena.h>

#include <algorithm>

#include "sizes.hpp"

namespace bench {
namespace {

void stream_stores(std::span<std::uint32_t> values) {
  const __m128i pattern = _mm_set1_epi32(0x01234567);
  for (std::size_t i = 0; i + 16 <= values.size(); i += 16)
    for (std::size_t line = 0; line < 16; line += 4)
      _mm_stream_si128(reinterpret_cast<__m128i*>(values.data() + i + line), pattern);
  _mm_sfence();
}

template <class Fill>
void over_all_threads(std::span<std::uint32_t> values, const Fill& fill) {
  const auto threads = static_cast<std::size_t>(tbb::this_task_arena::max_concurrency());
  const std::size_t part = (values.size() / threads + 1023) / 1024 * 1024;
  tbb::parallel_for(std::size_t{0}, threads, [&](std::size_t t) {
    const std::size_t first = std::min(t * part, values.size());
    fill(values.subspan(first, std::min(part, values.size() - first)));
  });
}

} // namespace

void register_bandwidth() {
  using values = std::span<std::uint32_t>;
  register_fill<std::uint32_t>("bandwidth/streaming/1", memory_bytes, stream_stores);
  register_fill<std::uint32_t>("bandwidth/streaming/all", memory_bytes,
                               [](values out) { over_all_threads(out, stream_stores); });
  const auto plain = [](values out) { std::fill(out.begin(), out.end(), 0x01234567u); };
  register_fill<std::uint32_t>("bandwidth/plain/all", memory_bytes,
                               [=](values out) { over_all_threads(out, plain); });
  register_fill<std::uint32_t>("bandwidth/plain/cached", cached_bytes, plain);
}

} // namespace bench
