#pragma once

#include <cstdint>
#include <limits>
#include <type_traits>

#include <hvl/math/transforms/multinomial.hpp>
#include <hvl/streams.h>
#include <hvl/streams_scaling.hpp>
#include <kestro/hvl/rng/distributions/multinomial.hpp>
#include <kestro/hvl/rng/distributions/uniform.hpp>

#include "distributions/device_ops.hpp"
#include "distributions/outcome_record.hpp"
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

namespace gpu {

/// Makes one vector of integers into counts, in place.
template <class Output>
struct multinomial_vector {
  std::int32_t ntrial;
  std::size_t dimension;
  const double* table;
  Output output;

  struct vector_at {
    const Output& output;
    std::size_t first;
    std::int32_t& operator[](std::size_t k) const { return output[first + k]; }
  };

  void operator()(sycl::id<1> vector) const {
    ::hvl::math::multinomial_in_place<device_ops<double>>(ntrial, dimension, table,
                                                          vector_at{output, vector[0] * dimension});
  }
};

/// The integers of uniform, all of them, and behind them a kernel that does not know the engine.
struct multinomial_conditional {
  using integers = uniform_std_accurate<std::int32_t, double>;
  static constexpr word_use words = ::hvl::math::multinomial_words;
  static_assert(words.words == integers::words.words && words.values == integers::words.values);

  std::int32_t ntrial;
  std::size_t dimension;
  const double* table;

  static integers first_step() {
    using limits = std::numeric_limits<std::int32_t>;
    return {-0x1p31, 0x1p31, {limits::min(), limits::max()}};
  }

  template <class Target>
  sycl::event second_step(sycl::queue& queue, const sycl::event& first, std::int64_t values,
                          const Target& target) const {
    return queue.submit([&](sycl::handler& handler) {
      auto output = target.template in_place<std::int32_t>(handler, first);
      if (values > 0)
        handler.parallel_for(sycl::range<1>(static_cast<std::size_t>(values) / dimension),
                             multinomial_vector<decltype(output)>{ntrial, dimension, table, output});
    });
  }
};

} // namespace gpu

/// Never negative, so both result types are made by one kernel and one function.
template <class T>
struct distribution_traits<multinomial<T>> {
  static constexpr const char* name = "multinomial";
  static constexpr bool needs_uniform_bits = false;
  static constexpr bool has_substreams = false;

  static std::int64_t dimension_of(const multinomial<T>& d) { return d.dimen(); }

  static word_use words_of(const multinomial<T>&) { return gpu::multinomial_conditional::words; }

  static device_numbers record_on(const multinomial<T>& d, const sycl::queue& queue) {
    return distribution_access::record(d)->on(queue);
  }

  static gpu::multinomial_conditional transform_of(const multinomial<T>& d, const double* table) {
    return {d.ntrial(), d.p().size(), table};
  }

  static int generate_on_host(const multinomial<T>& d, vqs_stream stream, std::int64_t values, T* r) {
    return viRngMultinomial_64(0, stream, values / d.dimen(), reinterpret_cast<std::int32_t*>(r), d.ntrial(),
                               d.dimen(), d.p().data());
  }
};

} // namespace kestro::hvl::rng::detail
