// What distributions of vectors have in common: they are made in two steps, the second in place.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "in_parallel.hpp"
#include "stream.hpp"

namespace hvl::streams {

// The elements of n vectors; negative where n is, and where there are more than can be counted. A dimension that is none gives n.
inline std::int64_t values_of_vectors(std::int64_t n, std::int32_t dimension) {
  return dimension <= 0 ? n : n > std::numeric_limits<std::int64_t>::max() / dimension ? -1 : n * dimension;
}

// The second step of n vectors, apply(first, how many), which never throws, for as many at a time as stay in cache.
template <class Apply>
int second_step(std::int64_t n, std::size_t dimension, const Apply& apply) noexcept {
  constexpr std::size_t values_at_once = std::size_t{1} << 14, least_at_once = 64;
  const auto vectors = static_cast<std::size_t>(n);
  const std::size_t at_once = std::max(values_at_once / dimension, least_at_once);
  const auto pass = [&](std::size_t i) {
    const std::size_t first = i * at_once;
    apply(first, std::min(at_once, vectors - first));
  };
  const std::size_t passes = (vectors + at_once - 1) / at_once;
  return guarded([&] {
    if (passes == 1)
      in_default_float_environment([&] { pass(0); });
    else
      in_parallel(0, passes, pass);
    return VQS_STATUS_OK;
  });
}

} // namespace hvl::streams
