#pragma once

#include <cstdint>

#include <hvl/streams.h>
#include <kestro/hvl/rng/distributions/uniform.hpp>

#include "framework/distribution_impl.hpp"

namespace kestro::hvl::rng::detail {

namespace gpu {

/// Words as they are.
struct words_32 {
  using result_type = std::uint32_t;
  using uniform_type = raw_word;
  static constexpr word_use words{1, 1};

  void operator()(const word_group<raw_word, 1>& group, std::uint32_t (&values)[1]) const {
    values[0] = group.raw[0];
  }
};

/// Two words a value, the first one low.
struct words_64 {
  using result_type = std::uint64_t;
  using uniform_type = raw_word;
  static constexpr word_use words{2, 1};

  void operator()(const word_group<raw_word, 2>& group, std::uint64_t (&values)[1]) const {
    values[0] = std::uint64_t{group.raw[1]} << 32 | group.raw[0];
  }
};

} // namespace gpu

template <>
struct distribution_traits<bits<std::uint32_t>> {
  static constexpr const char* name = "bits";
  static constexpr bool needs_uniform_bits = false;
  static constexpr bool has_substreams = false;

  static gpu::words_32 transform_of(const bits<std::uint32_t>&) { return {}; }

  static int generate_on_host(const bits<std::uint32_t>&, vqs_stream stream, std::int64_t n,
                              std::uint32_t* r) {
    return viRngUniformBits_64(0, stream, n, r);
  }
};

template <class T>
struct distribution_traits<uniform_bits<T>> {
  static constexpr const char* name = "uniform_bits";
  static constexpr bool needs_uniform_bits = true;
  static constexpr bool has_substreams = false;

  static auto transform_of(const uniform_bits<T>&) {
    return std::conditional_t<sizeof(T) == 4, gpu::words_32, gpu::words_64>();
  }

  static int generate_on_host(const uniform_bits<T>&, vqs_stream stream, std::int64_t n, T* r) {
    if constexpr (sizeof(T) == 4)
      return viRngUniformBits32_64(0, stream, n, r);
    else
      return viRngUniformBits64_64(0, stream, n, r);
  }
};

} // namespace kestro::hvl::rng::detail
