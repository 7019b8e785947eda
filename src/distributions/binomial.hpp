#pragma once

#include <cstdint>
#include <variant>

#include <hvl/math/transforms/binomial_rejection.hpp>
#include <hvl/math/transforms/hypergeometric_rejection.hpp>
#include <hvl/math/transforms/negative_binomial.hpp>
#include <hvl/streams.h>
#include <kestro/hvl/rng/distributions/binomial.hpp>
#include <kestro/hvl/rng/distributions/hypergeometric.hpp>
#include <kestro/hvl/rng/distributions/negative_binomial.hpp>

#include "distributions/rejection.hpp"
#include "distributions/thresholds.hpp"
#include "framework/distribution_impl.hpp"

namespace kestro::hvl::rng::detail {

namespace gpu {

struct negative_binomial_mixed {
  using result_type = std::int32_t;
  using uniform_type = double;
  static constexpr word_use words = ::hvl::math::negative_binomial_mixed_words;

  ::hvl::math::gamma_constants<double> means;

  interval<double> uniforms(int k) const { return {k == 0 ? -1.0 : 0.0, 1.0}; }
  void operator()(const word_group<double, words.words>& group, std::int32_t (&values)[1]) const {
    values[0] = ::hvl::math::negative_binomial_mixed<device_ops<double>>(group.uniforms, group.cells,
                                                                         group.raw, means);
  }
};

} // namespace gpu

/// Distributions of a table, or where there is none of the transform `Other` that other(d) gives and of the C function,
/// call(d, stream, n, r). Never negative, so both result types are made by one kernel and one function.
template <class Distribution, class Other>
struct law_traits {
  static constexpr bool needs_uniform_bits = false;
  static constexpr bool has_substreams = false;
  using traits = distribution_traits<Distribution>;

  static word_use words_of(const Distribution& d) {
    return distribution_access::record(d) ? gpu::threshold_icdf::words : Other::words;
  }

  static device_numbers record_on(const Distribution& d, const sycl::queue& queue) {
    const auto& record = distribution_access::record(d);
    return record ? record->on(queue) : nullptr;
  }

  static std::variant<gpu::threshold_icdf, Other> transform_of(const Distribution& d, const double* numbers) {
    if (const auto& record = distribution_access::record(d))
      return gpu::threshold_icdf(record->for_values(0), numbers);
    return traits::other(d);
  }

  static int generate_on_host(const Distribution& d, vqs_stream stream, std::int64_t n,
                              typename Distribution::result_type* r) {
    auto* const values = reinterpret_cast<std::int32_t*>(r);
    if (const auto& record = distribution_access::record(d)) {
      const vqs_thresholds table = record->for_values(n);
      return viRngThresholds_64(stream, n, values, &table);
    }
    return traits::call(d, stream, n, values);
  }
};

template <class T>
struct distribution_traits<binomial<T>> : law_traits<binomial<T>, gpu::transformed_rejection> {
  static constexpr const char* name = "binomial";
  static gpu::transformed_rejection other(const binomial<T>& d) {
    return {::hvl::math::binomial_rejection_of(d.ntrial(), d.p())};
  }
  static int call(const binomial<T>& d, vqs_stream stream, std::int64_t n, std::int32_t* r) {
    return viRngBinomial_64(0, stream, n, r, d.ntrial(), d.p());
  }
};

template <class T>
struct distribution_traits<hypergeometric<T>> : law_traits<hypergeometric<T>, gpu::transformed_rejection> {
  static constexpr const char* name = "hypergeometric";
  static gpu::transformed_rejection other(const hypergeometric<T>& d) {
    return {::hvl::math::hypergeometric_rejection_of(d.l(), d.s(), d.m())};
  }
  static int call(const hypergeometric<T>& d, vqs_stream stream, std::int64_t n, std::int32_t* r) {
    return viRngHypergeometric_64(0, stream, n, r, d.l(), d.s(), d.m());
  }
};

template <class T>
struct distribution_traits<negative_binomial<T>>
    : law_traits<negative_binomial<T>, gpu::negative_binomial_mixed> {
  static constexpr const char* name = "negative_binomial";
  static gpu::negative_binomial_mixed other(const negative_binomial<T>& d) {
    return {::hvl::math::negative_binomial_means(d.a(), d.p())};
  }
  static int call(const negative_binomial<T>& d, vqs_stream stream, std::int64_t n, std::int32_t* r) {
    return viRngNegbinomial_64(0, stream, n, r, d.a(), d.p());
  }
};

} // namespace kestro::hvl::rng::detail
