// The seam between engines and distributions: an engine yields words, a distribution is a transform of words
// with declared widths, and this function joins any two of them.
#pragma once

#include <cstdint>

#include "simd/kernels.hpp"

namespace hvl::streams {

// `values_per_group` values are made of `words_per_group` consecutive words; a last group may be cut, and
// still consumes all its words. values_per_group <= words_per_group.
struct transform {
  transform_function apply; // null: the words themselves are the values
  const void* parameters;
  std::uint32_t words_per_group;
  std::uint32_t values_per_group;
  std::uint32_t value_bytes;
  const direct_values* direct = nullptr; // the same values, where an engine may write them itself
};

// Writes n values and advances the record. Throws std::bad_alloc, and then has changed nothing.
void generate(const engine& e, const kernel_set& kernels, void* record, std::uint64_t n, void* out,
              const transform& t);

} // namespace hvl::streams
