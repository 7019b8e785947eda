#pragma once

#include <cstdint>
#include <type_traits>

#include <hvl/math/transforms/inverse_cdf.hpp>
#include <hvl/streams.h>
#include <kestro/hvl/rng/distributions/inverse_cdf.hpp>

#include "distributions/device_ops.hpp"
#include "distributions/host_function.hpp"
#include "framework/distribution_impl.hpp"

/// exponential, laplace, weibull, rayleigh, gumbel, cauchy.
namespace kestro::hvl::rng::detail {

namespace gpu {

/// Of the transforms that take one uniform on [0, 1) a value.
template <class T>
struct one_uniform {
  using result_type = T;
  using uniform_type = T;
  static constexpr word_use words{1, 1};
  interval<T> uniforms(int) const { return {T(0), T(1)}; }
};

template <class T>
struct exponential_icdf : one_uniform<T> {
  T a, beta;

  void operator()(const word_group<T, 1>& group, T (&values)[1]) const {
    values[0] = ::hvl::math::exponential_icdf<device_ops<T>>(group.uniforms[0], a, beta);
  }
};

template <class T>
struct weibull_icdf : one_uniform<T> {
  double exponent; // of the shape
  T a, beta;

  void operator()(const word_group<T, 1>& group, T (&values)[1]) const {
    values[0] = ::hvl::math::weibull_icdf<device_ops<T>>(group.uniforms[0], exponent, a, beta);
  }
};

template <class T>
struct rayleigh_icdf : one_uniform<T> {
  T a, beta;

  void operator()(const word_group<T, 1>& group, T (&values)[1]) const {
    values[0] = ::hvl::math::rayleigh_icdf<device_ops<T>>(group.uniforms[0], a, beta);
  }
};

template <class T>
struct gumbel_icdf : one_uniform<T> {
  T a, beta;

  void operator()(const word_group<T, 1>& group, T (&values)[1]) const {
    values[0] = ::hvl::math::gumbel_icdf<device_ops<T>>(group.uniforms[0], a, beta);
  }
};

template <class T>
using exponential_icdf_accurate = raised<exponential_icdf<T>, &exponential_icdf<T>::a>;
template <class T>
using weibull_icdf_accurate = raised<weibull_icdf<T>, &weibull_icdf<T>::a>;
template <class T>
using rayleigh_icdf_accurate = raised<rayleigh_icdf<T>, &rayleigh_icdf<T>::a>;

/// In double for both result types.
template <class T>
struct cauchy_icdf {
  using result_type = T;
  using uniform_type = double;
  static constexpr word_use words = ::hvl::math::cauchy_icdf_words;

  double a, b;

  interval<double> uniforms(int) const { return {::hvl::math::cauchy_low, ::hvl::math::cauchy_high}; }
  void operator()(const word_group<double, 1>& group, T (&values)[1]) const {
    values[0] = static_cast<T>(::hvl::math::cauchy_icdf<device_ops<double>>(group.uniforms[0], a, b));
  }
};

/// Two uniforms a value.
template <class T>
struct laplace_icdf {
  using result_type = T;
  using uniform_type = T;
  static constexpr word_use words = ::hvl::math::laplace_icdf_words;

  T a, b;

  interval<T> uniforms(int) const { return {T(0), T(1)}; }
  void operator()(const word_group<T, 2>& group, T (&values)[1]) const {
    values[0] = ::hvl::math::laplace_icdf<device_ops<T>>(group.uniforms[0], group.uniforms[1], a, b);
  }
};

} // namespace gpu

/// What the families share.
template <bool Accurate>
struct inverse_cdf_traits {
  static constexpr bool is_accurate = Accurate;
  static constexpr bool needs_uniform_bits = false;
  static constexpr bool has_substreams = false;
};

template <class T, class Method>
struct distribution_traits<exponential<T, Method>>
    : inverse_cdf_traits<std::is_same_v<Method, exponential_method::icdf_accurate>> {
  using inverse_cdf_traits<std::is_same_v<Method, exponential_method::icdf_accurate>>::is_accurate;
  static constexpr const char* name = "exponential";

  static auto transform_of(const exponential<T, Method>& d) {
    return gpu::of_method<is_accurate, gpu::exponential_icdf_accurate<T>>(
        gpu::exponential_icdf<T>{{}, d.a(), d.beta()});
  }

  static int generate_on_host(const exponential<T, Method>& d, vqs_stream stream, std::int64_t n, T* r) {
    return host_function<T>(vsRngExponential_64, vdRngExponential_64)(is_accurate ? VQS_METHOD_ACCURATE : 0,
                                                                      stream, n, r, d.a(), d.beta());
  }
};

template <class T, class Method>
struct distribution_traits<laplace<T, Method>> : inverse_cdf_traits<false> {
  static constexpr const char* name = "laplace";

  static auto transform_of(const laplace<T, Method>& d) { return gpu::laplace_icdf<T>{d.a(), d.b()}; }

  static int generate_on_host(const laplace<T, Method>& d, vqs_stream stream, std::int64_t n, T* r) {
    return host_function<T>(vsRngLaplace_64, vdRngLaplace_64)(0, stream, n, r, d.a(), d.b());
  }
};

template <class T, class Method>
struct distribution_traits<weibull<T, Method>>
    : inverse_cdf_traits<std::is_same_v<Method, weibull_method::icdf_accurate>> {
  using inverse_cdf_traits<std::is_same_v<Method, weibull_method::icdf_accurate>>::is_accurate;
  static constexpr const char* name = "weibull";

  static auto transform_of(const weibull<T, Method>& d) {
    return gpu::of_method<is_accurate, gpu::weibull_icdf_accurate<T>>(
        gpu::weibull_icdf<T>{{}, ::hvl::math::weibull_exponent(d.alpha()), d.a(), d.beta()});
  }

  static int generate_on_host(const weibull<T, Method>& d, vqs_stream stream, std::int64_t n, T* r) {
    return host_function<T>(vsRngWeibull_64, vdRngWeibull_64)(is_accurate ? VQS_METHOD_ACCURATE : 0, stream,
                                                              n, r, d.alpha(), d.a(), d.beta());
  }
};

template <class T, class Method>
struct distribution_traits<rayleigh<T, Method>>
    : inverse_cdf_traits<std::is_same_v<Method, rayleigh_method::icdf_accurate>> {
  using inverse_cdf_traits<std::is_same_v<Method, rayleigh_method::icdf_accurate>>::is_accurate;
  static constexpr const char* name = "rayleigh";

  static auto transform_of(const rayleigh<T, Method>& d) {
    return gpu::of_method<is_accurate, gpu::rayleigh_icdf_accurate<T>>(
        gpu::rayleigh_icdf<T>{{}, d.a(), d.beta()});
  }

  static int generate_on_host(const rayleigh<T, Method>& d, vqs_stream stream, std::int64_t n, T* r) {
    return host_function<T>(vsRngRayleigh_64, vdRngRayleigh_64)(is_accurate ? VQS_METHOD_ACCURATE : 0, stream,
                                                                n, r, d.a(), d.beta());
  }
};

template <class T, class Method>
struct distribution_traits<gumbel<T, Method>> : inverse_cdf_traits<false> {
  static constexpr const char* name = "gumbel";

  static auto transform_of(const gumbel<T, Method>& d) { return gpu::gumbel_icdf<T>{{}, d.a(), d.beta()}; }

  static int generate_on_host(const gumbel<T, Method>& d, vqs_stream stream, std::int64_t n, T* r) {
    return host_function<T>(vsRngGumbel_64, vdRngGumbel_64)(0, stream, n, r, d.a(), d.beta());
  }
};

template <class T, class Method>
struct distribution_traits<cauchy<T, Method>> : inverse_cdf_traits<false> {
  static constexpr const char* name = "cauchy";

  static auto transform_of(const cauchy<T, Method>& d) {
    return gpu::cauchy_icdf<T>{static_cast<double>(d.a()), static_cast<double>(d.b())};
  }

  static int generate_on_host(const cauchy<T, Method>& d, vqs_stream stream, std::int64_t n, T* r) {
    return host_function<T>(vsRngCauchy_64, vdRngCauchy_64)(0, stream, n, r, d.a(), d.b());
  }
};

} // namespace kestro::hvl::rng::detail
