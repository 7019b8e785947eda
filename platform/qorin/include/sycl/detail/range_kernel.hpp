// The loop over the work-items of a range kernel.
//
// The items of a range are numbered row-major; a launch cuts the numbers into chunks and hands each to a chunk
// function. A chunk function is compiled once per instruction set and inlines the kernel into a plain loop over
// the innermost dimension, so that the compiler vectorises the kernel across work-items. Two habits make it see
// through: the induction variable is signed, and the kernel is a local constant copy that no store of the kernel
// can change.
//
// QORIN_BASELINE_KERNELS, defined before the first include, compiles the chunk functions for the baseline only:
// a third of the code and compile time, and the same results.
#pragma once

#include <sycl/item.hpp>

#include <cstddef>

namespace sycl::detail {

/// Runs the items [begin, end) of a launch.
using chunk_function = void (*)(const void* launch, std::ptrdiff_t begin, std::ptrdiff_t end);

/// One chunk function, compiled for several instruction sets; the run-time choice is the runtime's.
struct chunk_functions {
  chunk_function baseline;
  chunk_function avx2;
  chunk_function avx512;
};

/// Runs the items [0, items) on the calling thread and, when that takes long, on more; returns when all are done.
QORIN_EXPORT void run_chunks(const chunk_functions& functions, const void* launch, std::ptrdiff_t items);

/// Walks the part [begin, end) of a row-major numbered range row by row. `row` gets the id of the row's first
/// item, with the innermost coordinate 0, and the interval of innermost coordinates to run.
template <int Dimensions, class Row>
inline __attribute__((always_inline)) void for_each_row(const range<Dimensions>& extent, std::ptrdiff_t begin,
                                                        std::ptrdiff_t end, const Row& row) {
  if constexpr (Dimensions == 1) {
    row(id<1>(), begin, end);
  } else {
    const auto width = static_cast<std::ptrdiff_t>(extent[Dimensions - 1]);
    while (begin < end) {
      const std::ptrdiff_t row_number = begin / width;
      const std::ptrdiff_t first = begin - row_number * width;
      const std::ptrdiff_t last = end - begin < width - first ? first + (end - begin) : width;
      id<Dimensions> start;
      if constexpr (Dimensions == 2) {
        start[0] = static_cast<std::size_t>(row_number);
      } else {
        start[0] = static_cast<std::size_t>(row_number) / extent[1];
        start[1] = static_cast<std::size_t>(row_number) % extent[1];
      }
      row(start, first, last);
      begin += last - first;
    }
  }
}

template <int Dimensions, class Kernel>
struct range_launch {
  range<Dimensions> extent;
  Kernel kernel;
};

// A kernel may take its index as any integer; how wide it needs to be is the caller's knowledge.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion"
template <int Dimensions, class Kernel>
inline __attribute__((always_inline)) void run_range_chunk(const void* launch, std::ptrdiff_t begin,
                                                           std::ptrdiff_t end) {
  const auto& source = *static_cast<const range_launch<Dimensions, Kernel>*>(launch);
  const Kernel kernel = source.kernel;
  const range<Dimensions> extent = source.extent;
  // Forced: a copy of the body outside of this function would not be compiled for its instruction set.
  const auto run_row = [&](id<Dimensions> at, std::ptrdiff_t first, std::ptrdiff_t last)
      __attribute__((always_inline)) {
    for (std::ptrdiff_t i = first; i < last; ++i) {
      at[Dimensions - 1] = static_cast<std::size_t>(i);
      kernel(item_access::make(at, extent));
    }
  };
  for_each_row(extent, begin, end, run_row);
}

#pragma GCC diagnostic pop

#if defined(__clang__)
#define QORIN_AVX512 "arch=x86-64-v4"
#else
#define QORIN_AVX512 "arch=x86-64-v4,prefer-vector-width=512"
#endif
#define QORIN_FOR_BASELINE __attribute__((flatten, noinline))
#define QORIN_FOR_AVX2 __attribute__((target("arch=x86-64-v3"), flatten, noinline))
#define QORIN_FOR_AVX512 __attribute__((target(QORIN_AVX512), flatten, noinline))

template <int Dimensions, class Kernel>
QORIN_FOR_BASELINE void range_chunk_baseline(const void* launch, std::ptrdiff_t begin, std::ptrdiff_t end) {
  run_range_chunk<Dimensions, Kernel>(launch, begin, end);
}
#if defined(QORIN_BASELINE_KERNELS)
template <int Dimensions, class Kernel>
inline constexpr chunk_functions range_chunks = {range_chunk_baseline<Dimensions, Kernel>,
                                                 range_chunk_baseline<Dimensions, Kernel>,
                                                 range_chunk_baseline<Dimensions, Kernel>};
#else
template <int Dimensions, class Kernel>
QORIN_FOR_AVX2 void range_chunk_avx2(const void* launch, std::ptrdiff_t begin, std::ptrdiff_t end) {
  run_range_chunk<Dimensions, Kernel>(launch, begin, end);
}
template <int Dimensions, class Kernel>
QORIN_FOR_AVX512 void range_chunk_avx512(const void* launch, std::ptrdiff_t begin, std::ptrdiff_t end) {
  run_range_chunk<Dimensions, Kernel>(launch, begin, end);
}
template <int Dimensions, class Kernel>
inline constexpr chunk_functions range_chunks = {range_chunk_baseline<Dimensions, Kernel>,
                                                 range_chunk_avx2<Dimensions, Kernel>,
                                                 range_chunk_avx512<Dimensions, Kernel>};
#endif

/// Runs a kernel over a whole range.
template <int Dimensions, class Kernel>
void run_range(const range<Dimensions>& extent, const Kernel& kernel) {
  const range_launch<Dimensions, Kernel> launch{extent, kernel};
  run_chunks(range_chunks<Dimensions, Kernel>, &launch, static_cast<std::ptrdiff_t>(extent.size()));
}

} // namespace sycl::detail
