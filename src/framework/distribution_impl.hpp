#pragma once

#include <cstdint>

#include <hvl/float_environment.hpp>

#include "framework/device_type.hpp"
#include "framework/stream.hpp"
#include "framework/transform.hpp"

namespace kestro::hvl::rng::detail {

/// What a distribution supplies to the framework; specialised in src/distributions:
///
///   static constexpr const char* name;
///   static constexpr bool needs_uniform_bits;   refused by engines without them
///   static constexpr bool has_substreams;       offered by the substream modes of mrg32k3a
///   static auto transform_of(const Distribution&);   a transform, or a std::variant of those to choose from
///   static int generate_on_host(const Distribution&, vqs_stream, std::int64_t n, result_type*);
template <class Distribution>
struct distribution_traits;

/// A distribution as a backend receives it: the caller's object by value, and what follows from it.
template <class T, class Distribution, device_type Device>
class distribution_impl {
 public:
  using traits = distribution_traits<Distribution>;

  explicit distribution_impl(const Distribution& distribution) : distribution_(distribution) {}

  /// A status of the stream library.
  int generate(vqs_stream stream, std::int64_t n, T* r) const {
    return traits::generate_on_host(distribution_, stream, n, r);
  }

  /// Calls `f` with the device transform, whose parameters are computed as kernels compute, whatever the caller's
  /// floating-point environment.
  template <class F>
  decltype(auto) with_transform(F&& f) const {
    const auto transform =
        ::hvl::in_default_float_environment([&] { return traits::transform_of(distribution_); });
    return visit_transform(transform, std::forward<F>(f));
  }

  /// Words and values of a group, known before a word is drawn.
  word_use words() const {
    return with_transform([](const auto& transform) { return word_use(transform.words); });
  }

  /// Words that `n` values consume; a last group may be cut and still consumes all its words.
  std::uint64_t words_of(std::int64_t n) const {
    const word_use use = words();
    return (static_cast<std::uint64_t>(n) + use.values - 1) / use.values * use.words;
  }

 private:
  Distribution distribution_;
};

} // namespace kestro::hvl::rng::detail
