#include "failure.hpp"
#include "progress.hpp"
#include "usm_memory.hpp"
#include "verbs.hpp"

#include <kestro/hvl/exceptions.hpp>

#include <algorithm>
#include <limits>
#include <unistd.h>

namespace hvl_rng {
namespace {

// Even, so that methods that make two values at a time waste none, and large enough for all threads.
constexpr std::uint64_t chunk_values = std::uint64_t{1} << 20;

// While one chunk is written the next one is made.
class pipeline {
 public:
  pipeline(sycl::queue& queue, source& numbers, std::size_t value_bytes)
      : queue_(queue), numbers_(numbers), values_in_one_(numbers.values_in_one()),
        chunk_(std::max(chunk_values / values_in_one_ / 2 * 2, std::uint64_t{2})),
        memory_{usm_memory(chunk_ * values_in_one_ * value_bytes, queue),
                usm_memory(chunk_ * values_in_one_ * value_bytes, queue)} {}

  // Memory may only go when nothing writes to it any more.
  ~pipeline() { queue_.wait(); }
  pipeline(const pipeline&) = delete;
  pipeline& operator=(const pipeline&) = delete;

  void run(std::uint64_t count, value_writer& writer, progress& bar) {
    std::uint64_t submitted = 0, written = 0;
    std::uint64_t pending = submit(0, count, submitted);
    for (int turn = 0; pending != 0; turn ^= 1) {
      events_[turn].wait();
      queue_.throw_asynchronous();
      const std::uint64_t ready = pending;
      pending = submit(turn ^ 1, count, submitted);
      writer.write(memory_[turn].get(), ready * values_in_one_);
      written += ready;
      bar.update(written);
    }
  }

 private:
  std::uint64_t submit(int turn, std::uint64_t count, std::uint64_t& submitted) {
    const std::uint64_t values = std::min(chunk_, count - submitted);
    if (values != 0)
      events_[turn] = numbers_.fill(memory_[turn].get(), static_cast<std::int64_t>(values));
    submitted += values;
    return values;
  }

  sycl::queue& queue_;
  source& numbers_;
  std::uint64_t values_in_one_, chunk_; // a chunk counts as `count` does
  usm_memory memory_[2];
  sycl::event events_[2];
};

} // namespace

void generate_numbers(const generate_options& options) {
  if (options.forever && options.format == output_format::npy)
    throw failure(exit_status::usage, "--forever: the npy format needs --count");
  const distribution_entry& distribution =
      find_distribution(options.distribution, options.type, options.method);
  const engine_entry& engine = find_engine(options.engine);

  // Before anything that prints: numbers and traces never share a stream.
  destination to(options.output);
  if (to.is_terminal() && options.format != output_format::text)
    throw failure(exit_status::usage, "--format: standard output is a terminal; use --output or a pipe");
  if (options.forever && to.is_beside())
    throw failure(exit_status::usage, "--forever: no file holds so many; use --count or a pipe");

  sycl::queue queue = make_queue(find_device(options.device));
  const std::unique_ptr<source> numbers =
      make_source(queue, engine, options.start, distribution, options.parameters);
  // A pair that is not offered is refused here, before the first byte of output.
  numbers->fill(usm_memory(distribution.value_bytes, queue).get(), 0).wait();

  try {
    const auto writer =
        make_writer(to, options.format, distribution.type, options.count * numbers->values_in_one());
    progress bar(::isatty(STDERR_FILENO) == 1 && !to.is_terminal(), options.forever ? 0 : options.count);
    pipeline(queue, *numbers, distribution.value_bytes)
        .run(options.forever ? std::numeric_limits<std::uint64_t>::max() : options.count, *writer, bar);
    to.close();
  } catch (const closed_pipe&) {
    // Whoever reads has enough.
  }
}

} // namespace hvl_rng
