// Work cut into chunks for the threads of oneTBB.
#include "run_adaptively.hpp"

#include <sycl/handler.hpp>

#include <cstring>

namespace sycl::detail {

void run_chunks(const chunk_functions& functions, const void* launch, std::ptrdiff_t items) {
  // Chunks begin at multiples of this many items, so that the vectors of neighbours do not share cache lines.
  constexpr std::ptrdiff_t granule = 64;
  const chunk_function run = chosen(functions);
  run_adaptively(items, granule, [=](std::ptrdiff_t begin, std::ptrdiff_t end) { run(launch, begin, end); });
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
  fork_join(pieces(0, bytes, bytes_per_task), [&](const pieces& part) { body(part.begin(), part.size()); });
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

namespace {

id<3> nth(std::size_t n, const range<3>& box) {
  return {n / (box[1] * box[2]), n / box[2] % box[1], n % box[2]};
}

void copy_in_order(const box_copy& what) {
  for (std::size_t i = 0; i < what.box.size(); ++i)
    std::memcpy(
        static_cast<char*>(what.to) + linear(nth(i, what.to_box), what.to_memory) * what.element_bytes,
        static_cast<const char*>(what.from) + linear(nth(i, what.box), what.from_memory) * what.element_bytes,
        what.element_bytes);
}

} // namespace

void copy_box(const box_copy& what) {
  if (what.to_box.size() > 0 && what.to_box != what.box) {
    copy_in_order(what);
    return;
  }
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
