#pragma once

#include <cstdint>

#include <hvl/math/transforms/beta.hpp>
#include <hvl/math/transforms/words.hpp>
#include <hvl/streams.h>
#include <kestro/hvl/rng/distributions/beta.hpp>

#include "distributions/device_ops.hpp"
#include "distributions/host_function.hpp"
#include "framework/distribution_impl.hpp"

namespace kestro::hvl::rng::detail {

namespace gpu {

/// Two words a value; all methods, which the constants choose from, in one kernel.
template <class T>
struct beta_cheng_johnk {
  using result_type = T;
  using uniform_type = double;
  static constexpr word_use words = ::hvl::math::beta_words;

  ::hvl::math::beta_constants constants;

  interval<double> uniforms(int) const { return {0.0, 1.0}; }
  void operator()(const word_group<double, 2>& group, T (&values)[1]) const {
    values[0] = static_cast<T>(::hvl::math::beta_cheng_johnk<device_ops<double>>(
        group.uniforms[0], group.uniforms[1], group.cells[0], group.raw, constants));
  }
};

} // namespace gpu

template <class T, class Method>
struct distribution_traits<beta<T, Method>> {
  static constexpr const char* name = "beta";
  static constexpr bool needs_uniform_bits = false;
  static constexpr bool has_substreams = false;

  static word_use words_of(const beta<T, Method>&) { return gpu::beta_cheng_johnk<T>::words; }

  /// The record is small: the transform's constants, which go with the kernel.
  static device_numbers record_on(const beta<T, Method>&, const sycl::queue&) { return nullptr; }

  static gpu::beta_cheng_johnk<T> transform_of(const beta<T, Method>& d, const double*) {
    return {::hvl::math::beta_constants_of(d.p(), d.q(), d.a(), d.scale())};
  }

  static int generate_on_host(const beta<T, Method>& d, vqs_stream stream, std::int64_t n, T* r) {
    return host_function<T>(vsRngBeta_64, vdRngBeta_64)(0, stream, n, r, d.p(), d.q(), d.a(), d.scale());
  }
};

} // namespace kestro::hvl::rng::detail
