#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include <hvl/math/transforms/gaussian.hpp>
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
  using distribution_type = gaussian<T, gaussian_method::box_muller>;
  static constexpr int words_per_value = words_per_value_of(::hvl::math::gaussian_box_muller_words);
  static constexpr bool in_pairs = in_pairs_of(::hvl::math::gaussian_box_muller_words);

  T mean, stddev;

  template <std::size_t N>
  void operator()(const T (&u)[N], T (&values)[N / 2]) const {
    for (std::size_t k = 0; k < N / 2; ++k)
      values[k] = ::hvl::math::gaussian_box_muller<device_ops<T>>(u[2 * k], u[2 * k + 1], mean, stddev);
  }
};

/// Two uniforms a pair of values.
template <class T>
struct gaussian_box_muller2 {
  using distribution_type = gaussian<T, gaussian_method::box_muller2>;
  static constexpr int words_per_value = words_per_value_of(::hvl::math::gaussian_box_muller2_words);
  static constexpr bool in_pairs = in_pairs_of(::hvl::math::gaussian_box_muller2_words);

  T mean, stddev;

  template <std::size_t N>
  void operator()(const T (&u)[N], T (&values)[N]) const {
    for (std::size_t k = 0; k < N; k += 2)
      ::hvl::math::gaussian_box_muller2<device_ops<T>>(u[k], u[k + 1], mean, stddev, values[k],
                                                       values[k + 1]);
  }
};

/// One uniform on [-1, 1) a value.
template <class T>
struct gaussian_icdf {
  using distribution_type = gaussian<T, gaussian_method::icdf>;
  static constexpr int words_per_value = words_per_value_of(::hvl::math::gaussian_icdf_words);
  static constexpr bool in_pairs = in_pairs_of(::hvl::math::gaussian_icdf_words);

  T mean, scale;

  template <std::size_t N>
  void operator()(const T (&v)[N], T (&values)[N]) const {
    for (std::size_t k = 0; k < N; ++k)
      values[k] = ::hvl::math::gaussian_icdf<device_ops<T>>(v[k], mean, scale);
  }
};

} // namespace gpu

/// The uniforms that the Box-Muller methods take, and those of the inverse method.
template <class T>
constexpr interval<T> normal_uniforms(bool is_icdf) {
  return {is_icdf ? T(-1) : T(0), T(1)};
}

template <class T, class Method>
struct distribution_traits<gaussian<T, Method>> {
  static constexpr bool is_icdf = std::is_same_v<Method, gaussian_method::icdf>;
  static constexpr bool is_box_muller2 = std::is_same_v<Method, gaussian_method::box_muller2>;

  using transform = std::conditional_t<
      is_icdf, gpu::gaussian_icdf<T>,
      std::conditional_t<is_box_muller2, gpu::gaussian_box_muller2<T>, gpu::gaussian_box_muller<T>>>;

  static constexpr const char* name = "gaussian";
  static constexpr bool needs_uniform_bits = false;
  static constexpr bool has_substreams = !is_box_muller2;
  static constexpr int words_per_value = transform::words_per_value;
  static constexpr bool in_pairs = transform::in_pairs;
  using computation_type = T;

  static interval<T> uniforms(const gaussian<T, Method>&) { return normal_uniforms<T>(is_icdf); }

  static transform device_transform(const gaussian<T, Method>& d) {
    if constexpr (is_icdf)
      return {d.mean(), ::hvl::math::icdf_scale(d.stddev())};
    else
      return {d.mean(), d.stddev()};
  }

  static int generate_on_host(const gaussian<T, Method>& d, vqs_stream stream, std::int64_t n, T* r) {
    constexpr std::int64_t method = is_icdf          ? VQS_METHOD_GAUSSIAN_ICDF
                                    : is_box_muller2 ? VQS_METHOD_GAUSSIAN_BOX_MULLER2
                                                     : VQS_METHOD_GAUSSIAN_BOX_MULLER;
    return host_function<T>(vsRngGaussian_64, vdRngGaussian_64)(method, stream, n, r, d.mean(), d.stddev());
  }
};

} // namespace kestro::hvl::rng::detail
