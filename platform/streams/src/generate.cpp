#include "generate.hpp"

#include <unistd.h>

#include <oneapi/tbb/parallel_for.h>
#include <oneapi/tbb/task_arena.h>

#include <atomic>
#include <memory>

#include "hvl/float_environment.hpp"
#include "streamed_output.hpp"
#include "word_reader.hpp"

namespace hvl::streams {
namespace {

// Every part starts at a multiple of this many words, so that no SIMD block straddles two parts.
constexpr std::uint64_t part_alignment_words = std::uint64_t{624} * 64;

// Streaming stores pay once the output no longer fits the last cache.
std::uint64_t streaming_threshold_bytes() noexcept {
  static const std::uint64_t bytes = [] {
    const long cache = sysconf(_SC_LEVEL3_CACHE_SIZE);
    return std::clamp(static_cast<std::uint64_t>(std::max(cache, 0L)), std::uint64_t{8} << 20,
                      std::uint64_t{32} << 20);
  }();
  return bytes;
}

// body(i) for every i of [first, last), over the threads of the calling arena, which inherit their floating-point
// environment from whoever started them. oneTBB orders the bodies after what precedes the call and before what follows
// it; the atomic says so once more, where the thread sanitizer can see it.
template <class Body>
void in_parallel(std::size_t first, std::size_t last, const Body& body) {
  std::atomic<std::size_t> order{0};
  order.store(1, std::memory_order_release);
  tbb::parallel_for(
      first, last,
      [&](std::size_t i) {
        order.load(std::memory_order_acquire);
        const default_float_environment environment; // body computes behind calls that are not inlined
        body(i);
        order.fetch_add(1, std::memory_order_release);
      },
      tbb::simple_partitioner());
  order.load(std::memory_order_acquire);
}

struct part {
  void* record;
  std::uint64_t values;
  std::byte* out;
};

std::uint64_t words_of(std::uint64_t values, const transform& t) noexcept {
  return (values + t.values_per_group - 1) / t.values_per_group * t.words_per_group;
}

void apply(const transform& t, const void* words, std::byte* out, std::size_t values) noexcept {
  if (t.apply == nullptr)
    std::memcpy(out, words, values * t.value_bytes);
  else
    t.apply(t.parameters, words, out, values);
}

// Brings in words, and returns how many values can be made of them.
std::size_t refill(word_reader& reader, const transform& t, std::uint64_t values) noexcept {
  const std::size_t groups = reader.refill() / t.words_per_group;
  return static_cast<std::size_t>(std::min<std::uint64_t>(groups * t.values_per_group, values));
}

void write(word_reader& reader, const part& p, const transform& t) noexcept {
  std::byte* out = p.out;
  for (std::uint64_t left = p.values; left != 0;) {
    const std::size_t granule = t.direct != nullptr ? reader.direct_granule() : 0;
    std::size_t made;
    if (granule != 0 && left >= granule) {
      made = reader.take_values(out, left, *t.direct, false);
    } else {
      made = refill(reader, t, left);
      apply(t, reader.words(), out, made);
      reader.take(static_cast<std::size_t>(words_of(made, t)));
    }
    out += made * t.value_bytes;
    left -= made;
  }
}

void stream(word_reader& reader, const part& p, const transform& t, const kernel_set& kernels) noexcept {
  const std::size_t run = streamed_output::run_bytes / t.value_bytes;
  streamed_output out(p.out, kernels);
  for (std::uint64_t left = p.values; left != 0;) {
    const std::size_t granule = t.direct != nullptr ? reader.direct_granule() : 0;
    if (granule != 0 && left >= granule) {
      std::size_t made;
      if (std::byte* const lines = out.whole_lines(); lines != nullptr && reader.can_stream()) {
        made = reader.take_values(lines, left, *t.direct, true);
        out.pass(made * t.value_bytes);
      } else {
        made = reader.take_values(out.space(), std::min<std::uint64_t>(left, std::max(run, granule)),
                                  *t.direct, false);
        out.commit(made * t.value_bytes);
      }
      left -= made;
    } else {
      std::size_t made = refill(reader, t, left);
      left -= made;
      while (made != 0) {
        const std::size_t count = std::min(run, made);
        apply(t, reader.words(), out.space(), count);
        out.commit(count * t.value_bytes);
        reader.take(static_cast<std::size_t>(words_of(count, t)));
        made -= count;
      }
    }
  }
  out.finish();
}

void run_part(const engine& e, const kernel_set& kernels, const part& p, const transform& t,
              bool streaming) noexcept {
  word_reader reader(e, kernels.block(e), p.record, words_of(p.values, t));
  if (streaming)
    stream(reader, p, t, kernels);
  else
    write(reader, p, t);
  reader.close();
}

// Records of parts after the first, each skipped to its start: record i from record i - 2^k, in rounds of
// doubling count, so that dear skips run side by side and few distances occur.
class part_records {
 public:
  part_records(const engine& e, const void* record, std::size_t count, std::uint64_t words_apart)
      : stride_((record_bytes(record) + vector_alignment - 1) / vector_alignment * vector_alignment),
        bytes_(new (std::align_val_t{vector_alignment}) std::byte[stride_ * count]) {
    const auto derive = [&](std::size_t part, const void* earlier, std::uint64_t words) {
      std::memcpy((*this)[part], earlier, record_bytes(earlier));
      e.advance((*this)[part], std::span(&words, 1));
    };
    derive(0, record, words_apart);
    for (std::size_t known = 1; known < count; known *= 2)
      in_parallel(known, std::min(2 * known, count),
                  [&](std::size_t i) { derive(i, (*this)[i - known], known * words_apart); });
  }

  void* operator[](std::size_t i) const noexcept { return bytes_.get() + i * stride_; }

 private:
  struct aligned_delete {
    void operator()(std::byte* p) const noexcept {
      ::operator delete[](p, std::align_val_t{vector_alignment});
    }
  };
  std::size_t stride_;
  std::unique_ptr<std::byte[], aligned_delete> bytes_;
};

} // namespace

void generate(const engine& e, const kernel_set& kernels, void* record, std::uint64_t n, void* out,
              const transform& t) {
  if (n == 0)
    return;
  const bool streaming = n >= streaming_threshold_bytes() / t.value_bytes;
  auto* const bytes = static_cast<std::byte*>(out);

  // A record with tables takes as long to copy as some of its words.
  const auto threads = static_cast<std::uint64_t>(tbb::this_task_arena::max_concurrency());
  const std::uint64_t parts_wanted =
      std::min(threads, words_of(n, t) / (e.words_per_thread + record_bytes(record)));
  const std::uint64_t unit = part_alignment_words / t.words_per_group * t.values_per_group;
  const std::uint64_t values_per_part = parts_wanted < 2 ? n : (n / parts_wanted + unit) / unit * unit;
  const auto parts = static_cast<std::size_t>((n + values_per_part - 1) / values_per_part);
  if (parts < 2) {
    run_part(e, kernels, {record, n, bytes}, t, streaming);
    return;
  }

  const part_records later(e, record, parts - 1, words_of(values_per_part, t));
  in_parallel(0, parts, [&](std::size_t i) {
    const std::uint64_t first = i * values_per_part;
    run_part(
        e, kernels,
        {i == 0 ? record : later[i - 1], std::min(values_per_part, n - first), bytes + first * t.value_bytes},
        t, streaming);
  });
  // The first field is all that moves. The others another thread may read meanwhile.
  const record_field& position = e.fields.front();
  std::memcpy(static_cast<std::byte*>(record) + position.offset_bytes,
              static_cast<const std::byte*>(later[parts - 2]) + position.offset_bytes,
              std::size_t{position.word_bytes} * position.words);
}

} // namespace hvl::streams
