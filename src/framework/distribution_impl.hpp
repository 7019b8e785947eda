#pragma once

#include <concepts>
#include <cstdint>
#include <limits>
#include <type_traits>

#include <hvl/float_environment.hpp>

#include "framework/device_copies.hpp"
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
///
/// A distribution that carries a record, which the host computes of its parameters, has in place of transform_of
///
///   static word_use words_of(const Distribution&);   without the record
///   static device_numbers record_on(const Distribution&, const sycl::queue&);   null where the parameters need none
///   static auto transform_of(const Distribution&, const double* record);
///
/// One that is vector-valued has besides
///
///   static std::int64_t dimension_of(const Distribution&);
template <class Distribution>
struct distribution_traits;

/// The values that a caller's n stands for: n itself, or of vectors all their elements. Negative where n is, and where there are
/// more values than can be counted.
template <class Distribution>
std::int64_t values_of(const Distribution& distribution, std::int64_t n) {
  if constexpr (requires { distribution_traits<Distribution>::dimension_of(distribution); }) {
    const std::int64_t dimension = distribution_traits<Distribution>::dimension_of(distribution);
    return n > std::numeric_limits<std::int64_t>::max() / dimension ? -1 : n * dimension;
  } else {
    return n;
  }
}

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

  /// Returns submit(transform), the event of work on the queue, given the device transform. Its parameters are computed as
  /// kernels compute, whatever the caller's floating-point environment.
  template <class Submit>
  sycl::event with_transform(const sycl::queue&, const Submit& submit) const {
    return visit_transform(transform(), submit);
  }

  /// Words and values of a group, known before a word is drawn.
  word_use words() const {
    return visit_transform(transform(), [](const auto& t) { return word_use(t.words); });
  }

 private:
  auto transform() const {
    return ::hvl::in_default_float_environment([&] { return traits::transform_of(distribution_); });
  }

  Distribution distribution_;
};

/// The same of a distribution that carries a record, which reaches the device here.
template <class T, class Distribution, device_type Device>
class distribution_impl_ex {
 public:
  using traits = distribution_traits<Distribution>;

  explicit distribution_impl_ex(const Distribution& distribution) : distribution_(distribution) {}

  int generate(vqs_stream stream, std::int64_t n, T* r) const {
    return traits::generate_on_host(distribution_, stream, n, r);
  }

  template <class Submit>
  sycl::event with_transform(const sycl::queue& queue, const Submit& submit) const {
    const device_numbers record = traits::record_on(distribution_, queue);
    const auto transform = ::hvl::in_default_float_environment(
        [&] { return traits::transform_of(distribution_, record.get()); });
    return while_in_use(record, [&] { return visit_transform(transform, submit); });
  }

  word_use words() const { return traits::words_of(distribution_); }

 private:
  Distribution distribution_;
};

template <class Distribution>
concept carries_record = requires(const Distribution& distribution, const sycl::queue& queue) {
  distribution_traits<Distribution>::record_on(distribution, queue);
};

/// A distribution's descriptor for a kind of device.
template <class Distribution, device_type Device>
using descriptor =
    std::conditional_t<carries_record<Distribution>,
                       distribution_impl_ex<typename Distribution::result_type, Distribution, Device>,
                       distribution_impl<typename Distribution::result_type, Distribution, Device>>;

/// Words that `n` values consume; a last group may be cut and still consumes all its words.
constexpr std::uint64_t words_of(word_use use, std::int64_t n) {
  return (static_cast<std::uint64_t>(n) + use.values - 1) / use.values * use.words;
}

} // namespace kestro::hvl::rng::detail
