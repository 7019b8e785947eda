#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include <hvl/streams.h>
#include <hvl/streams_scaling.hpp>
#include <kestro/hvl/rng/distributions/uniform.hpp>

#include "framework/distribution_impl.hpp"

namespace kestro::hvl::rng::detail {

namespace gpu {

/// The scaled word is the value, clamped to [a, b] by the accurate method; an integer is its floor, clamped to
/// [a, b - 1] whatever the method: there the methods differ in their computation type only.
template <class T, class Computation, class Method>
struct uniform_transform {
  using distribution_type = uniform<T, Method>;
  static constexpr int words_per_value = 1;

  ::hvl::streams::value_range<T> range;

  template <std::size_t N>
  void operator()(const Computation (&u)[N], T (&values)[N]) const {
    for (std::size_t k = 0; k < N; ++k) {
      if constexpr (std::is_integral_v<T>)
        values[k] = ::hvl::streams::integer_value(u[k], range);
      else if constexpr (std::is_same_v<Method, uniform_method::accurate>)
        values[k] = ::hvl::streams::clamp_to(u[k], range.low, range.high);
      else
        values[k] = u[k];
    }
  }
};

template <class T, class Computation>
using uniform_std = uniform_transform<T, Computation, uniform_method::standard>;
template <class T, class Computation>
using uniform_std_accurate = uniform_transform<T, Computation, uniform_method::accurate>;

} // namespace gpu

template <class T, class Method>
struct distribution_traits<uniform<T, Method>> {
  static constexpr bool is_accurate = std::is_same_v<Method, uniform_method::accurate>;

  static constexpr const char* name = "uniform";
  static constexpr bool needs_uniform_bits = false;
  static constexpr bool has_substreams = true;
  static constexpr int words_per_value = 1;
  static constexpr bool in_pairs = false;

  using computation_type =
      std::conditional_t<std::is_floating_point_v<T>, T, std::conditional_t<is_accurate, double, float>>;
  using transform = std::conditional_t<is_accurate, gpu::uniform_std_accurate<T, computation_type>,
                                       gpu::uniform_std<T, computation_type>>;

  static interval<computation_type> uniforms(const uniform<T, Method>& d) {
    return {static_cast<computation_type>(d.a()), static_cast<computation_type>(d.b())};
  }

  static transform device_transform(const uniform<T, Method>& d) {
    return {::hvl::streams::values_on(d.a(), d.b())};
  }

  static int generate_on_host(const uniform<T, Method>& d, vqs_stream stream, std::int64_t n, T* r) {
    constexpr std::int64_t method = is_accurate ? VQS_METHOD_UNIFORM_ACCURATE : VQS_METHOD_UNIFORM_STANDARD;
    if constexpr (std::is_same_v<T, float>)
      return vsRngUniform_64(method, stream, n, r, d.a(), d.b());
    else if constexpr (std::is_same_v<T, double>)
      return vdRngUniform_64(method, stream, n, r, d.a(), d.b());
    else if constexpr (std::is_same_v<T, std::int32_t>)
      return viRngUniform_64(method, stream, n, r, d.a(), d.b());
    else
      return viRngUniformU_64(method, stream, n, r, d.a(), d.b());
  }
};

} // namespace kestro::hvl::rng::detail
