#pragma once

#include <cstdint>

#include <hvl/math/transforms/refined.hpp>
#include <hvl/math/transforms/words.hpp>
#include <hvl/streams.h>
#include <kestro/hvl/rng/distributions/bernoulli.hpp>

#include "distributions/device_ops.hpp"
#include "framework/distribution_impl.hpp"

namespace kestro::hvl::rng::detail {

namespace gpu {

/// Two words a value, the second one refining the first.
struct bernoulli_icdf {
  using result_type = std::int32_t;
  using uniform_type = double;
  static constexpr word_use words = ::hvl::math::thresholds_words;

  double threshold;

  interval<double> uniforms(int) const { return {0.0, 1.0}; }
  void operator()(const word_group<double, 2>& group, std::int32_t (&values)[1]) const {
    const double u =
        ::hvl::math::refined<device_ops<double>>(group.uniforms[0], group.uniforms[1], group.cells[0]);
    values[0] = u < threshold ? 1 : 0;
  }
};

} // namespace gpu

/// Never negative, so both result types are made by one kernel and one function.
template <class T>
struct distribution_traits<bernoulli<T>> {
  static constexpr const char* name = "bernoulli";
  static constexpr bool needs_uniform_bits = false;
  static constexpr bool has_substreams = false;

  static gpu::bernoulli_icdf transform_of(const bernoulli<T>& d) {
    return {d.p() < 1 ? d.p() : 2}; // a uniform may be rounded to 1
  }

  static int generate_on_host(const bernoulli<T>& d, vqs_stream stream, std::int64_t n, T* r) {
    return viRngBernoulli_64(0, stream, n, reinterpret_cast<std::int32_t*>(r), d.p());
  }
};

} // namespace kestro::hvl::rng::detail
