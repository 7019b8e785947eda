#include "memory_fill.hpp"

#include "stopwatch.hpp"

#include <algorithm>
#include <emmintrin.h>
#include <thread>
#include <vector>

namespace hvl_rng {
namespace {

// Below, starting threads costs more than the stores.
constexpr std::size_t fewest_bytes_to_stream = std::size_t{8} << 20;
constexpr std::size_t line_bytes = 64;

// USM memory is aligned for every fundamental type, which is what these stores ask for.
void stream_lines(char* first, const char* last) {
  const __m128i pattern = _mm_set1_epi8(0x5a);
  for (; first != last; first += line_bytes)
    for (std::size_t part = 0; part < line_bytes; part += sizeof pattern)
      _mm_stream_si128(reinterpret_cast<__m128i*>(first + part), pattern);
  _mm_sfence();
}

void stream_by_all_threads(char* memory, std::size_t bytes) {
  const std::size_t lines = bytes / line_bytes, threads = std::max(1u, std::thread::hardware_concurrency());
  const auto line = [&](std::size_t thread) { return memory + lines * thread / threads * line_bytes; };
  std::vector<std::jthread> others;
  for (std::size_t thread = 1; thread < threads; ++thread)
    others.emplace_back(stream_lines, line(thread), line(thread + 1));
  stream_lines(line(0), line(1));
}

} // namespace

double fill_memory(sycl::queue& queue, void* memory, std::size_t bytes) {
  double seconds = seconds_of([&] { queue.memset(memory, 0x5a, bytes).wait(); });
  if (queue.get_device().is_cpu() && bytes >= fewest_bytes_to_stream)
    seconds =
        std::min(seconds, seconds_of([&] { stream_by_all_threads(static_cast<char*>(memory), bytes); }));
  return seconds;
}

} // namespace hvl_rng
