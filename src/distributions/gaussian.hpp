#pragma once

#include <cstdint>
#include <type_traits>

#include <hvl/math/transforms/gaussian.hpp>
#include <hvl/math/transforms/words.hpp>
#include <hvl/streams.h>
#include <kestro/hvl/rng/distributions/gaussian.hpp>
#include <kestro/hvl/rng/distributions/gaussian_mv.hpp>

#include "distributions/device_ops.hpp"
#include "distributions/host_function.hpp"
#include "distributions/matrix_record.hpp"
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

namespace gpu {

/// Makes one vector of standard normal numbers into values, in place.
template <class T, class Output>
struct gaussian_mv_vector {
  ::hvl::math::matrix_storage storage;
  std::size_t dimension;
  const double* record; // mean, then matrix
  Output output;

  struct vector_at {
    const Output& output;
    std::size_t first;
    T& operator[](std::size_t k) const { return output[first + k]; }
  };

  void operator()(sycl::id<1> vector) const {
    ::hvl::math::gaussian_mv_in_place<device_ops<T>>(storage, dimension, record, record + dimension,
                                                     vector_at{output, vector[0] * dimension});
  }
};

/// Standard normal numbers, and behind them a kernel that does not know the engine.
template <class T>
struct gaussian_mv_box_muller2 {
  static constexpr word_use words = gaussian_box_muller2<T>::words;

  ::hvl::math::matrix_storage storage;
  std::size_t dimension;
  const double* record;

  static gaussian_box_muller2<T> first_step() { return {T(0), T(1)}; }

  template <class Target>
  sycl::event second_step(sycl::queue& queue, const sycl::event& first, std::int64_t values,
                          const Target& target) const {
    return queue.submit([&](sycl::handler& handler) {
      auto output = target.template in_place<T>(handler, first);
      if (values > 0)
        handler.parallel_for(sycl::range<1>(static_cast<std::size_t>(values) / dimension),
                             gaussian_mv_vector<T, decltype(output)>{storage, dimension, record, output});
    });
  }
};

} // namespace gpu

template <class T, class Method>
struct distribution_traits<gaussian_mv<T, Method>> {
  using distribution = gaussian_mv<T, Method>;
  static constexpr const char* name = "gaussian_mv";
  static constexpr bool needs_uniform_bits = false;
  static constexpr bool has_substreams = false;

  static std::int64_t dimension_of(const distribution& d) { return d.dimen(); }

  static word_use words_of(const distribution&) { return gpu::gaussian_mv_box_muller2<T>::words; }

  static device_numbers record_on(const distribution& d, const sycl::queue& queue) {
    return distribution_access::record(d)->on(queue);
  }

  static gpu::gaussian_mv_box_muller2<T> transform_of(const distribution& d, const double* record) {
    using ::hvl::math::matrix_storage;
    const bool is_diagonal = d.mstorage() == gaussian_mv_storage::diagonal;
    return {is_diagonal ? matrix_storage::diagonal : matrix_storage::packed, d.a().size(), record};
  }

  static int generate_on_host(const distribution& d, vqs_stream stream, std::int64_t values, T* r) {
    return host_function<T>(vsRngGaussianMV_64, vdRngGaussianMV_64)(
        0, stream, values / d.dimen(), r, d.dimen(), static_cast<std::int32_t>(d.mstorage()), d.a().data(),
        d.t().data());
  }
};

} // namespace kestro::hvl::rng::detail
