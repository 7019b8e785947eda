#pragma once

#include <cstddef>
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

/// `Formula` makes one value of one uniform; accurate methods then raise it to the displacement.
template <class Distribution, class Formula, bool Accurate>
struct inverse_cdf {
  using distribution_type = Distribution;
  using result_type = typename Distribution::result_type;
  static constexpr int words_per_value = 1;

  Formula formula;

  template <class Uniform, std::size_t N>
  void operator()(const Uniform (&u)[N], result_type (&values)[N]) const {
    for (std::size_t k = 0; k < N; ++k) {
      const result_type value = formula(u[k]);
      if constexpr (Accurate)
        values[k] = ::hvl::math::raised_to<device_ops<result_type>>(value, formula.a);
      else
        values[k] = value;
    }
  }
};

template <class T>
struct exponential_icdf {
  T a, beta;
  T operator()(T u) const { return ::hvl::math::exponential_icdf<device_ops<T>>(u, a, beta); }
};

template <class T>
struct weibull_icdf {
  double exponent;
  T a, beta;
  T operator()(T u) const { return ::hvl::math::weibull_icdf<device_ops<T>>(u, exponent, a, beta); }
};

template <class T>
struct rayleigh_icdf {
  T a, beta;
  T operator()(T u) const { return ::hvl::math::rayleigh_icdf<device_ops<T>>(u, a, beta); }
};

template <class T>
struct gumbel_icdf {
  T a, beta;
  T operator()(T u) const { return ::hvl::math::gumbel_icdf<device_ops<T>>(u, a, beta); }
};

/// In double for both result types.
template <class T>
struct cauchy_icdf {
  double a, b;
  T operator()(double angle) const {
    return static_cast<T>(::hvl::math::cauchy_icdf<device_ops<double>>(angle, a, b));
  }
};

/// Two uniforms a value.
template <class T>
struct laplace_icdf {
  using distribution_type = laplace<T, laplace_method::icdf>;
  static constexpr int words_per_value = words_per_value_of(::hvl::math::laplace_icdf_words);

  T a, b;

  template <std::size_t N>
  void operator()(const T (&u)[N], T (&values)[N / 2]) const {
    for (std::size_t k = 0; k < N / 2; ++k)
      values[k] = ::hvl::math::laplace_icdf<device_ops<T>>(u[2 * k], u[2 * k + 1], a, b);
  }
};

} // namespace gpu

/// What the families share.
template <class Computation, const ::hvl::math::word_use& Words>
struct inverse_cdf_traits {
  using computation_type = Computation;
  static constexpr bool needs_uniform_bits = false;
  static constexpr bool has_substreams = false;
  static constexpr int words_per_value = gpu::words_per_value_of(Words);
  static constexpr bool in_pairs = false;

  template <class Distribution>
  static interval<Computation> uniforms(const Distribution&) {
    return {Computation(0), Computation(1)};
  }
};

template <class T, class Method>
struct distribution_traits<exponential<T, Method>>
    : inverse_cdf_traits<T, ::hvl::math::exponential_icdf_words> {
  static constexpr bool is_accurate = std::is_same_v<Method, exponential_method::icdf_accurate>;
  using transform = gpu::inverse_cdf<exponential<T, Method>, gpu::exponential_icdf<T>, is_accurate>;
  static constexpr const char* name = "exponential";

  static transform device_transform(const exponential<T, Method>& d) { return {{d.a(), d.beta()}}; }

  static int generate_on_host(const exponential<T, Method>& d, vqs_stream stream, std::int64_t n, T* r) {
    return host_function<T>(vsRngExponential_64, vdRngExponential_64)(is_accurate ? VQS_METHOD_ACCURATE : 0,
                                                                      stream, n, r, d.a(), d.beta());
  }
};

template <class T, class Method>
struct distribution_traits<laplace<T, Method>> : inverse_cdf_traits<T, ::hvl::math::laplace_icdf_words> {
  using transform = gpu::laplace_icdf<T>;
  static constexpr const char* name = "laplace";

  static transform device_transform(const laplace<T, Method>& d) { return {d.a(), d.b()}; }

  static int generate_on_host(const laplace<T, Method>& d, vqs_stream stream, std::int64_t n, T* r) {
    return host_function<T>(vsRngLaplace_64, vdRngLaplace_64)(0, stream, n, r, d.a(), d.b());
  }
};

template <class T, class Method>
struct distribution_traits<weibull<T, Method>> : inverse_cdf_traits<T, ::hvl::math::weibull_icdf_words> {
  static constexpr bool is_accurate = std::is_same_v<Method, weibull_method::icdf_accurate>;
  using transform = gpu::inverse_cdf<weibull<T, Method>, gpu::weibull_icdf<T>, is_accurate>;
  static constexpr const char* name = "weibull";

  static transform device_transform(const weibull<T, Method>& d) {
    return {{::hvl::math::weibull_exponent(d.alpha()), d.a(), d.beta()}};
  }

  static int generate_on_host(const weibull<T, Method>& d, vqs_stream stream, std::int64_t n, T* r) {
    return host_function<T>(vsRngWeibull_64, vdRngWeibull_64)(is_accurate ? VQS_METHOD_ACCURATE : 0, stream,
                                                              n, r, d.alpha(), d.a(), d.beta());
  }
};

template <class T, class Method>
struct distribution_traits<rayleigh<T, Method>> : inverse_cdf_traits<T, ::hvl::math::rayleigh_icdf_words> {
  static constexpr bool is_accurate = std::is_same_v<Method, rayleigh_method::icdf_accurate>;
  using transform = gpu::inverse_cdf<rayleigh<T, Method>, gpu::rayleigh_icdf<T>, is_accurate>;
  static constexpr const char* name = "rayleigh";

  static transform device_transform(const rayleigh<T, Method>& d) { return {{d.a(), d.beta()}}; }

  static int generate_on_host(const rayleigh<T, Method>& d, vqs_stream stream, std::int64_t n, T* r) {
    return host_function<T>(vsRngRayleigh_64, vdRngRayleigh_64)(is_accurate ? VQS_METHOD_ACCURATE : 0, stream,
                                                                n, r, d.a(), d.beta());
  }
};

template <class T, class Method>
struct distribution_traits<gumbel<T, Method>> : inverse_cdf_traits<T, ::hvl::math::gumbel_icdf_words> {
  static constexpr bool is_accurate = false;
  using transform = gpu::inverse_cdf<gumbel<T, Method>, gpu::gumbel_icdf<T>, is_accurate>;
  static constexpr const char* name = "gumbel";

  static transform device_transform(const gumbel<T, Method>& d) { return {{d.a(), d.beta()}}; }

  static int generate_on_host(const gumbel<T, Method>& d, vqs_stream stream, std::int64_t n, T* r) {
    return host_function<T>(vsRngGumbel_64, vdRngGumbel_64)(0, stream, n, r, d.a(), d.beta());
  }
};

template <class T, class Method>
struct distribution_traits<cauchy<T, Method>> : inverse_cdf_traits<double, ::hvl::math::cauchy_icdf_words> {
  static constexpr bool is_accurate = false;
  using transform = gpu::inverse_cdf<cauchy<T, Method>, gpu::cauchy_icdf<T>, is_accurate>;
  static constexpr const char* name = "cauchy";

  static interval<double> uniforms(const cauchy<T, Method>&) {
    return {::hvl::math::cauchy_low, ::hvl::math::cauchy_high};
  }

  static transform device_transform(const cauchy<T, Method>& d) {
    return {{static_cast<double>(d.a()), static_cast<double>(d.b())}};
  }

  static int generate_on_host(const cauchy<T, Method>& d, vqs_stream stream, std::int64_t n, T* r) {
    return host_function<T>(vsRngCauchy_64, vdRngCauchy_64)(0, stream, n, r, d.a(), d.b());
  }
};

} // namespace kestro::hvl::rng::detail
