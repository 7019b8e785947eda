#pragma once

#include <cstdint>
#include <type_traits>

#include <hvl/math/transforms/lognormal.hpp>

#include "distributions/gaussian.hpp"

namespace kestro::hvl::rng::detail {

namespace gpu {

/// Two uniforms a pair of values.
template <class T>
struct lognormal_box_muller2 {
  using result_type = T;
  using uniform_type = T;
  static constexpr word_use words = ::hvl::math::lognormal_box_muller2_words;

  T m, s, displ, scale;

  interval<T> uniforms(int) const { return {T(0), T(1)}; }
  void operator()(const word_group<T, 2>& group, T (&values)[2]) const {
    ::hvl::math::lognormal_box_muller2<device_ops<T>>(group.uniforms[0], group.uniforms[1], m, s, displ,
                                                      scale, values[0], values[1]);
  }
};

/// One uniform on [-1, 1) a value; `s` is the deviation as icdf_scale makes it.
template <class T>
struct lognormal_icdf {
  using result_type = T;
  using uniform_type = T;
  static constexpr word_use words = ::hvl::math::lognormal_icdf_words;

  T m, s, displ, scale;

  interval<T> uniforms(int) const { return {T(-1), T(1)}; }
  void operator()(const word_group<T, 1>& group, T (&values)[1]) const {
    values[0] = ::hvl::math::lognormal_icdf<device_ops<T>>(group.uniforms[0], m, s, displ, scale);
  }
};

template <class T>
using lognormal_box_muller2_accurate = raised<lognormal_box_muller2<T>, &lognormal_box_muller2<T>::displ>;
template <class T>
using lognormal_icdf_accurate = raised<lognormal_icdf<T>, &lognormal_icdf<T>::displ>;

} // namespace gpu

template <class T, class Method>
struct distribution_traits<lognormal<T, Method>> {
  using distribution = lognormal<T, Method>;
  static constexpr bool is_accurate = std::is_same_v<Method, lognormal_method::box_muller2_accurate> ||
                                      std::is_same_v<Method, lognormal_method::icdf_accurate>;
  static constexpr bool is_icdf = std::is_same_v<Method, lognormal_method::icdf> ||
                                  std::is_same_v<Method, lognormal_method::icdf_accurate>;

  static constexpr const char* name = "lognormal";
  static constexpr bool needs_uniform_bits = false;
  static constexpr bool has_substreams = false;

  static auto transform_of(const distribution& d) {
    using plain = std::conditional_t<is_icdf, gpu::lognormal_icdf<T>, gpu::lognormal_box_muller2<T>>;
    using accurate =
        std::conditional_t<is_icdf, gpu::lognormal_icdf_accurate<T>, gpu::lognormal_box_muller2_accurate<T>>;
    return gpu::of_method<is_accurate, accurate>(
        plain{d.m(), is_icdf ? ::hvl::math::icdf_scale(d.s()) : d.s(), d.displ(), d.scale()});
  }

  static int generate_on_host(const distribution& d, vqs_stream stream, std::int64_t n, T* r) {
    constexpr std::int64_t method = (is_icdf ? VQS_METHOD_LOGNORMAL_ICDF : VQS_METHOD_LOGNORMAL_BOX_MULLER2) |
                                    (is_accurate ? VQS_METHOD_ACCURATE : 0);
    return host_function<T>(vsRngLognormal_64, vdRngLognormal_64)(method, stream, n, r, d.m(), d.s(),
                                                                  d.displ(), d.scale());
  }
};

} // namespace kestro::hvl::rng::detail
