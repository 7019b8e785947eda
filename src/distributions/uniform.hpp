#pragma once

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
  using result_type = T;
  using uniform_type = Computation;
  static constexpr word_use words{1, 1};

  Computation a, b;
  ::hvl::streams::value_range<T> range;

  interval<Computation> uniforms(int) const { return {a, b}; }
  void operator()(const word_group<Computation, 1>& group, T (&values)[1]) const {
    const Computation u = group.uniforms[0];
    if constexpr (std::is_integral_v<T>)
      values[0] = ::hvl::streams::integer_value(u, range);
    else if constexpr (std::is_same_v<Method, uniform_method::accurate>)
      values[0] = ::hvl::streams::clamp_to(u, range.low, range.high);
    else
      values[0] = u;
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

  static auto transform_of(const uniform<T, Method>& d) {
    using computation_type =
        std::conditional_t<std::is_floating_point_v<T>, T, std::conditional_t<is_accurate, double, float>>;
    using transform = std::conditional_t<is_accurate, gpu::uniform_std_accurate<T, computation_type>,
                                         gpu::uniform_std<T, computation_type>>;
    return transform{static_cast<computation_type>(d.a()), static_cast<computation_type>(d.b()),
                     ::hvl::streams::values_on(d.a(), d.b())};
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
