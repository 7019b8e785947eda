#pragma once

#include <cstdint>

#include <hvl/float_environment.hpp>

#include "framework/device_type.hpp"
#include "framework/engine_traits.hpp"

namespace kestro::hvl::rng::detail {

/// What a distribution supplies to the framework; specialised in src/distributions:
///
///   static constexpr const char* name;
///   static constexpr bool needs_uniform_bits;   refused by engines without them
///   static constexpr bool has_substreams;       offered by the substream modes of mrg32k3a
///   static constexpr int words_per_value;       of the engine, 1 or 2
///   static constexpr bool in_pairs;             values are made in pairs; an odd count wastes a word
///   using computation_type = ...;               of the engine's uniforms; std::uint32_t for raw words
///   static interval<computation_type> uniforms(const Distribution&);
///   struct transform {
///     using distribution_type = Distribution;
///     static constexpr int words_per_value;
///     template <std::size_t N>
///     void operator()(const computation_type (&u)[N], result_type (&values)[N / words_per_value]) const;
///   };
///   static transform device_transform(const Distribution&);
///   static int generate_on_host(const Distribution&, vqs_stream, std::int64_t n, result_type*);
template <class Distribution>
struct distribution_traits;

/// Where the uniforms of a distribution lie.
template <class T>
struct interval {
  T a, b;
};

/// Marks raw words instead of scaled uniforms.
using raw_word = std::uint32_t;

/// Words that `n` values consume.
template <class Distribution>
constexpr std::uint64_t words_of(std::int64_t n) {
  using traits = distribution_traits<Distribution>;
  const auto values =
      static_cast<std::uint64_t>(n) + (traits::in_pairs ? static_cast<std::uint64_t>(n) % 2 : 0);
  return values * static_cast<std::uint64_t>(traits::words_per_value);
}

/// A distribution as a backend receives it: the caller's object by value, and what follows from it on that
/// device.
template <class T, class Distribution, device_type Device>
class distribution_impl;

template <class T, class Distribution>
class distribution_impl<T, Distribution, device_type::cpu> {
 public:
  using distribution_type = Distribution;
  using traits = distribution_traits<Distribution>;

  explicit distribution_impl(const Distribution& distribution) : distribution_(distribution) {}

  /// A status of the stream library.
  int generate(vqs_stream stream, std::int64_t n, T* r) const {
    return traits::generate_on_host(distribution_, stream, n, r);
  }

  /// For engines that generate with a kernel on every device.
  distribution_impl<T, Distribution, device_type::gpu> on_device() const;

 private:
  Distribution distribution_;
};

template <class T, class Distribution>
class distribution_impl<T, Distribution, device_type::gpu> {
 public:
  using distribution_type = Distribution;
  using traits = distribution_traits<Distribution>;
  using computation_type = typename traits::computation_type;
  using transform_type = typename traits::transform;

  explicit distribution_impl(const Distribution& distribution) : distribution_(distribution) {}

  /// The parameters of kernels are computed as the kernels compute, whatever the caller's floating-point environment.
  transform_type transform() const {
    return ::hvl::in_default_float_environment([&] { return traits::device_transform(distribution_); });
  }

  /// The coefficients that carry words of `Engine` to the uniforms that the transform takes.
  template <class Engine>
  auto coefficients() const {
    if constexpr (std::is_same_v<computation_type, raw_word>) {
      return no_coefficients{};
    } else {
      return ::hvl::in_default_float_environment([&] {
        const interval<computation_type> u = traits::uniforms(distribution_);
        return ::hvl::streams::uniform_coefficients<computation_type>(engine_kernel<Engine>::scale, u.a, u.b);
      });
    }
  }

  struct no_coefficients {};

 private:
  Distribution distribution_;
};

template <class T, class Distribution>
distribution_impl<T, Distribution, device_type::gpu>
distribution_impl<T, Distribution, device_type::cpu>::on_device() const {
  return distribution_impl<T, Distribution, device_type::gpu>(distribution_);
}

} // namespace kestro::hvl::rng::detail
