#pragma once

#include <cstdint>
#include <type_traits>

#include <hvl/math/transforms/gaussian.hpp>
#include <hvl/math/transforms/words.hpp>
#include <hvl/streams.h>
#include <kestro/hvl/rng/distributions/gaussian.hpp>

#include "distributions/device_ops.hpp"
#include "distributions/host_function.hpp"
#include "framework/distribution_impl.hpp"

namespace kestro::hvl::rng::detail {

namespace gpu {

/// Two uniforms a value.
template <class T>
struct gaussian_box_muller {
  using result_type = T;
  using uniform_type = T;
  static constexpr word_use words = ::hvl::math::gaussian_box_muller_words;

  T mean, stddev;

  interval<T> uniforms(int) const { return {T(0), T(1)}; }
  void operator()(const word_group<T, 2>& group, T (&values)[1]) const {
    values[0] =
        ::hvl::math::gaussian_box_muller<device_ops<T>>(group.uniforms[0], group.uniforms[1], mean, stddev);
  }
};

/// Two uniforms a pair of values.
template <class T>
struct gaussian_box_muller2 {
  using result_type = T;
  using uniform_type = T;
  static constexpr word_use words = ::hvl::math::gaussian_box_muller2_words;

  T mean, stddev;

  interval<T> uniforms(int) const { return {T(0), T(1)}; }
  void operator()(const word_group<T, 2>& group, T (&values)[2]) const {
    ::hvl::math::gaussian_box_muller2<device_ops<T>>(group.uniforms[0], group.uniforms[1], mean, stddev,
                                                     values[0], values[1]);
  }
};

/// One uniform on [-1, 1) a value; `scale` is the deviation as icdf_scale makes it.
template <class T>
struct gaussian_icdf {
  using result_type = T;
  using uniform_type = T;
  static constexpr word_use words = ::hvl::math::gaussian_icdf_words;

  T mean, scale;

  interval<T> uniforms(int) const { return {T(-1), T(1)}; }
  void operator()(const word_group<T, 1>& group, T (&values)[1]) const {
    values[0] = ::hvl::math::gaussian_icdf<device_ops<T>>(group.uniforms[0], mean, scale);
  }
};

} // namespace gpu

template <class T, class Method>
struct distribution_traits<gaussian<T, Method>> {
  static constexpr bool is_icdf = std::is_same_v<Method, gaussian_method::icdf>;
  static constexpr bool is_box_muller2 = std::is_same_v<Method, gaussian_method::box_muller2>;

  static constexpr const char* name = "gaussian";
  static constexpr bool needs_uniform_bits = false;
  static constexpr bool has_substreams = !is_box_muller2;

  static auto transform_of(const gaussian<T, Method>& d) {
    if constexpr (is_icdf)
      return gpu::gaussian_icdf<T>{d.mean(), ::hvl::math::icdf_scale(d.stddev())};
    else if constexpr (is_box_muller2)
      return gpu::gaussian_box_muller2<T>{d.mean(), d.stddev()};
    else
      return gpu::gaussian_box_muller<T>{d.mean(), d.stddev()};
  }

  static int generate_on_host(const gaussian<T, Method>& d, vqs_stream stream, std::int64_t n, T* r) {
    constexpr std::int64_t method = is_icdf          ? VQS_METHOD_GAUSSIAN_ICDF
                                    : is_box_muller2 ? VQS_METHOD_GAUSSIAN_BOX_MULLER2
                                                     : VQS_METHOD_GAUSSIAN_BOX_MULLER;
    return host_function<T>(vsRngGaussian_64, vdRngGaussian_64)(method, stream, n, r, d.mean(), d.stddev());
  }
};

} // namespace kestro::hvl::rng::detail
