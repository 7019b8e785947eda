#pragma once

#include <cstdint>
#include <variant>

#include <hvl/math/transforms/poisson_rejection.hpp>
#include <hvl/streams.h>
#include <kestro/hvl/rng/distributions/poisson.hpp>

#include "distributions/rejection.hpp"
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
    const auto& record = distribution_access::record(d);
    return record ? record->on(queue) : nullptr;
  }

  static std::variant<gpu::threshold_icdf, gpu::transformed_rejection> transform_of(const poisson<T>& d,
                                                                                    const double* numbers) {
    if (const auto& record = distribution_access::record(d))
      return gpu::threshold_icdf(record->for_values(0), numbers);
    return gpu::transformed_rejection{::hvl::math::poisson_rejection_of(d.lambda())};
  }

  static int generate_on_host(const poisson<T>& d, vqs_stream stream, std::int64_t n, T* r) {
    auto* const values = reinterpret_cast<std::int32_t*>(r);
    if (const auto& record = distribution_access::record(d)) {
      const vqs_thresholds table = record->for_values(n);
      return viRngThresholds_64(stream, n, values, &table);
    }
    return viRngPoisson_64(0, stream, n, values, d.lambda());
  }
};

} // namespace kestro::hvl::rng::detail
