#pragma once

#include <cstddef>
#include <cstdint>

#include <hvl/streams.h>
#include <kestro/hvl/rng/distributions/uniform.hpp>

#include "framework/distribution_impl.hpp"

namespace kestro::hvl::rng::detail {

namespace gpu {

/// Words as they are.
template <class Distribution>
struct words_32 {
  using distribution_type = Distribution;
  static constexpr int words_per_value = 1;
  template <std::size_t N>
  void operator()(const raw_word (&words)[N], std::uint32_t (&values)[N]) const {
    for (std::size_t k = 0; k < N; ++k)
      values[k] = words[k];
  }
};

/// Two words a value, the first one low.
template <class Distribution>
struct words_64 {
  using distribution_type = Distribution;
  static constexpr int words_per_value = 2;
  template <std::size_t N>
  void operator()(const raw_word (&words)[N], std::uint64_t (&values)[N / 2]) const {
    for (std::size_t k = 0; k < N / 2; ++k)
      values[k] = std::uint64_t{words[2 * k + 1]} << 32 | words[2 * k];
  }
};

template <class Distribution, template <class> class Transform>
struct bits_traits {
  static constexpr bool has_substreams = false;
  static constexpr int words_per_value = Transform<Distribution>::words_per_value;
  static constexpr bool in_pairs = false;
  using computation_type = raw_word;
  using transform = Transform<Distribution>;
  static transform device_transform(const Distribution&) { return {}; }
};

} // namespace gpu

template <>
struct distribution_traits<bits<std::uint32_t>> : gpu::bits_traits<bits<std::uint32_t>, gpu::words_32> {
  static constexpr const char* name = "bits";
  static constexpr bool needs_uniform_bits = false;
  static int generate_on_host(const bits<std::uint32_t>&, vqs_stream stream, std::int64_t n,
                              std::uint32_t* r) {
    return viRngUniformBits_64(0, stream, n, r);
  }
};

template <>
struct distribution_traits<uniform_bits<std::uint32_t>>
    : gpu::bits_traits<uniform_bits<std::uint32_t>, gpu::words_32> {
  static constexpr const char* name = "uniform_bits";
  static constexpr bool needs_uniform_bits = true;
  static int generate_on_host(const uniform_bits<std::uint32_t>&, vqs_stream stream, std::int64_t n,
                              std::uint32_t* r) {
    return viRngUniformBits32_64(0, stream, n, r);
  }
};

template <>
struct distribution_traits<uniform_bits<std::uint64_t>>
    : gpu::bits_traits<uniform_bits<std::uint64_t>, gpu::words_64> {
  static constexpr const char* name = "uniform_bits";
  static constexpr bool needs_uniform_bits = true;
  static int generate_on_host(const uniform_bits<std::uint64_t>&, vqs_stream stream, std::int64_t n,
                              std::uint64_t* r) {
    return viRngUniformBits64_64(0, stream, n, r);
  }
};

} // namespace kestro::hvl::rng::detail
