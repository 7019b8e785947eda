#pragma once

#include <cstdint>

#include <hvl/streams.h>
#include <kestro/hvl/rng/distributions/poisson.hpp>

#include "distributions/thresholds.hpp"
#include "framework/distribution_impl.hpp"

namespace kestro::hvl::rng::detail {

/// Never negative, so both result types are made by one kernel and one function.
template <class T>
struct distribution_traits<poisson<T>> {
  static constexpr const char* name = "poisson";
  static constexpr bool needs_uniform_bits = false;
  static constexpr bool has_substreams = false;

  static word_use words_of(const poisson<T>&) { return gpu::threshold_icdf::words; }

  static device_numbers record_on(const poisson<T>& d, const sycl::queue& queue) {
    return distribution_access::record(d)->on(queue);
  }

  static gpu::threshold_icdf transform_of(const poisson<T>& d, const double* record) {
    return {distribution_access::record(d)->for_values(0), record};
  }

  static int generate_on_host(const poisson<T>& d, vqs_stream stream, std::int64_t n, T* r) {
    const vqs_thresholds table = distribution_access::record(d)->for_values(n);
    return viRngThresholds_64(stream, n, reinterpret_cast<std::int32_t*>(r), &table);
  }
};

} // namespace kestro::hvl::rng::detail
