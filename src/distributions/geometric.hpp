#pragma once

#include <cstdint>

#include <hvl/math/transforms/geometric.hpp>
#include <hvl/math/transforms/words.hpp>
#include <hvl/streams.h>
#include <kestro/hvl/rng/distributions/geometric.hpp>

#include "distributions/device_ops.hpp"
#include "framework/distribution_impl.hpp"

namespace kestro::hvl::rng::detail {

namespace gpu {

/// Two words a value, the second one refining the first.
struct geometric_icdf {
  using result_type = std::int32_t;
  using uniform_type = double;
  static constexpr word_use words = ::hvl::math::geometric_icdf_words;

  double scale;

  interval<double> uniforms(int) const { return {0.0, 1.0}; }
  void operator()(const word_group<double, 2>& group, std::int32_t (&values)[1]) const {
    using ops = device_ops<double>;
    const double u = ::hvl::math::refined<ops>(group.uniforms[0], group.uniforms[1], group.cells[0]);
    values[0] = static_cast<std::int32_t>(::hvl::math::geometric_icdf<ops>(u, scale));
  }
};

} // namespace gpu

/// Never negative, so both result types are made by one kernel and one function.
template <class T>
struct distribution_traits<geometric<T>> {
  static constexpr const char* name = "geometric";
  static constexpr bool needs_uniform_bits = false;
  static constexpr bool has_substreams = false;

  static gpu::geometric_icdf transform_of(const geometric<T>& d) {
    return {::hvl::math::geometric_scale(d.p())};
  }

  static int generate_on_host(const geometric<T>& d, vqs_stream stream, std::int64_t n, T* r) {
    return viRngGeometric_64(0, stream, n, reinterpret_cast<std::int32_t*>(r), d.p());
  }
};

} // namespace kestro::hvl::rng::detail
