// Work cut into chunks for the threads of oneTBB.
#include <sycl/handler.hpp>

#include <hvl/core.h>

#include <oneapi/tbb/blocked_range.h>
#include <oneapi/tbb/parallel_for.h>

#include <algorithm>
#include <chrono>
#include <cstring>

namespace sycl::detail {

namespace {

chunk_function choose(const chunk_functions& functions) {
  switch (hvl_serv_isa()) {
  case HVL_ISA_AVX512:
    return functions.avx512;
  case HVL_ISA_AVX2:
    return functions.avx2;
  case HVL_ISA_SCALAR:
    return functions.baseline;
  default:
    throw exception(make_error_code(errc::runtime), "HVL_ISA names no instruction set of this processor");
  }
}

// Below this a launch stays on its thread: other threads take longer to wake.
constexpr auto alone_for = std::chrono::microseconds(10);
// Chunks begin at multiples of this many items, so that the vectors of neighbours do not share cache lines.
constexpr std::ptrdiff_t granule = 64;

} // namespace

void run_chunks(const chunk_functions& functions, const void* launch, std::ptrdiff_t items) {
  const chunk_function run = choose(functions);
  // The cost of an item is unknown. Doubling blocks keep the first items on this thread until it is clear that
  // the launch is long, whether it has many cheap items or a few dear ones.
  const auto begin = std::chrono::steady_clock::now();
  std::ptrdiff_t done = 0;
  for (std::ptrdiff_t block = 1; done < items; block = done) {
    const std::ptrdiff_t end = done + std::min(block, items - done);
    run(launch, done, end);
    done = end;
    if (std::chrono::steady_clock::now() - begin > alone_for)
      break;
  }
  if (done == items)
    return;
  const std::ptrdiff_t grain = done < granule ? 1 : granule;
  using granules = oneapi::tbb::blocked_range<std::ptrdiff_t>;
  oneapi::tbb::parallel_for(granules(done / grain, (items + grain - 1) / grain), [&](const granules& part) {
    run(launch, std::max(done, part.begin() * grain), std::min(items, part.end() * grain));
  });
}

namespace {

constexpr std::size_t bytes_per_task = std::size_t{1} << 20;

template <class Body>
void for_pieces(std::size_t bytes, const Body& body) {
  if (bytes <= 2 * bytes_per_task) {
    body(0, bytes);
    return;
  }
  using pieces = oneapi::tbb::blocked_range<std::size_t>;
  oneapi::tbb::parallel_for(pieces(0, bytes, bytes_per_task),
                            [&](const pieces& part) { body(part.begin(), part.size()); });
}

} // namespace

void copy_bytes(void* to, const void* from, std::size_t bytes) {
  for_pieces(bytes, [=](std::size_t first, std::size_t count) {
    if (count > 0)
      std::memcpy(static_cast<char*>(to) + first, static_cast<const char*>(from) + first, count);
  });
}

void set_bytes(void* to, int value, std::size_t bytes) {
  for_pieces(bytes, [=](std::size_t first, std::size_t count) {
    if (count > 0)
      std::memset(static_cast<char*>(to) + first, value, count);
  });
}

void copy_box(const box_copy& what) {
  const std::size_t row_bytes = what.box[2] * what.element_bytes;
  const bool contiguous =
      what.box[2] == what.to_memory[2] && what.box[2] == what.from_memory[2] &&
      (what.box[0] == 1 || (what.box[1] == what.to_memory[1] && what.box[1] == what.from_memory[1]));
  if (contiguous || what.box.size() == 0) {
    copy_bytes(what.to, what.from, what.box.size() * what.element_bytes);
    return;
  }
  for (std::size_t z = 0; z < what.box[0]; ++z)
    for (std::size_t y = 0; y < what.box[1]; ++y)
      std::memcpy(static_cast<char*>(what.to) + linear(id<3>(z, y, 0), what.to_memory) * what.element_bytes,
                  static_cast<const char*>(what.from) +
                      linear(id<3>(z, y, 0), what.from_memory) * what.element_bytes,
                  row_bytes);
}

} // namespace sycl::detail
