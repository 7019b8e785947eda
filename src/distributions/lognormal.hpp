#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include <hvl/math/transforms/inverse_cdf.hpp>
#include <hvl/math/transforms/lognormal.hpp>

#include "distributions/gaussian.hpp"

namespace kestro::hvl::rng::detail {

namespace gpu {

/// Two uniforms a pair of values.
template <class T, class Distribution>
struct lognormal_box_muller2 {
  using distribution_type = Distribution;
  static constexpr int words_per_value = words_per_value_of(::hvl::math::lognormal_box_muller2_words);
  static constexpr bool in_pairs = in_pairs_of(::hvl::math::lognormal_box_muller2_words);

  T m, s, displ, scale;

  template <std::size_t N>
  void operator()(const T (&u)[N], T (&values)[N]) const {
    for (std::size_t k = 0; k < N; k += 2)
      ::hvl::math::lognormal_box_muller2<device_ops<T>>(u[k], u[k + 1], m, s, displ, scale, values[k],
                                                        values[k + 1]);
  }
};

/// One uniform on [-1, 1) a value; `s` is the scaled deviation.
template <class T, class Distribution>
struct lognormal_icdf {
  using distribution_type = Distribution;
  static constexpr int words_per_value = words_per_value_of(::hvl::math::lognormal_icdf_words);
  static constexpr bool in_pairs = in_pairs_of(::hvl::math::lognormal_icdf_words);

  T m, s, displ, scale;

  template <std::size_t N>
  void operator()(const T (&v)[N], T (&values)[N]) const {
    for (std::size_t k = 0; k < N; ++k)
      values[k] = ::hvl::math::lognormal_icdf<device_ops<T>>(v[k], m, s, displ, scale);
  }
};

/// An accurate method: the plain one, raised to the displacement.
template <class Plain>
struct lognormal_accurate : Plain {
  template <class T, std::size_t N, std::size_t M>
  void operator()(const T (&u)[N], T (&values)[M]) const {
    Plain::operator()(u, values);
    for (std::size_t k = 0; k < M; ++k)
      values[k] = ::hvl::math::raised_to<device_ops<T>>(values[k], this->displ);
  }
};

template <class T, class Distribution>
using lognormal_box_muller2_accurate = lognormal_accurate<lognormal_box_muller2<T, Distribution>>;
template <class T, class Distribution>
using lognormal_icdf_accurate = lognormal_accurate<lognormal_icdf<T, Distribution>>;

} // namespace gpu

template <class T, class Method>
struct distribution_traits<lognormal<T, Method>> {
  using distribution = lognormal<T, Method>;
  static constexpr bool is_accurate = std::is_same_v<Method, lognormal_method::box_muller2_accurate> ||
                                      std::is_same_v<Method, lognormal_method::icdf_accurate>;
  static constexpr bool is_icdf = std::is_same_v<Method, lognormal_method::icdf> ||
                                  std::is_same_v<Method, lognormal_method::icdf_accurate>;

  using plain_transform = std::conditional_t<is_icdf, gpu::lognormal_icdf<T, distribution>,
                                             gpu::lognormal_box_muller2<T, distribution>>;
  using transform =
      std::conditional_t<is_accurate, gpu::lognormal_accurate<plain_transform>, plain_transform>;

  static constexpr const char* name = "lognormal";
  static constexpr bool needs_uniform_bits = false;
  static constexpr bool has_substreams = false;
  static constexpr int words_per_value = transform::words_per_value;
  static constexpr bool in_pairs = transform::in_pairs;
  using computation_type = T;

  static interval<T> uniforms(const distribution&) { return normal_uniforms<T>(is_icdf); }

  static transform device_transform(const distribution& d) {
    const plain_transform plain{d.m(), is_icdf ? ::hvl::math::icdf_scale(d.s()) : d.s(), d.displ(),
                                d.scale()};
    if constexpr (is_accurate)
      return {plain};
    else
      return plain;
  }

  static int generate_on_host(const distribution& d, vqs_stream stream, std::int64_t n, T* r) {
    constexpr std::int64_t method = (is_icdf ? VQS_METHOD_LOGNORMAL_ICDF : VQS_METHOD_LOGNORMAL_BOX_MULLER2) |
                                    (is_accurate ? VQS_METHOD_ACCURATE : 0);
    return host_function<T>(vsRngLognormal_64, vdRngLognormal_64)(method, stream, n, r, d.m(), d.s(),
                                                                  d.displ(), d.scale());
  }
};

} // namespace kestro::hvl::rng::detail
