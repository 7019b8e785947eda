#pragma once

#include <cstdint>
#include <type_traits>
#include <variant>

#include <hvl/math/erfinv.hpp>
#include <hvl/math/transforms/gamma.hpp>
#include <hvl/math/transforms/words.hpp>
#include <hvl/streams.h>
#include <kestro/hvl/rng/distributions/chi_square.hpp>
#include <kestro/hvl/rng/distributions/gamma.hpp>

#include "distributions/device_ops.hpp"
#include "distributions/host_function.hpp"
#include "framework/distribution_impl.hpp"
#include "service/portability.hpp"

namespace kestro::hvl::rng::detail {

namespace gpu {

/// The words of a group: in `float` the normal number of a value, in `double` radius and angle of those of two values; then
/// their acceptances, and at shapes below 1 their powers.
template <class T, bool BelowOne>
struct gamma_marsaglia {
  using result_type = T;
  using uniform_type = T;
  static constexpr word_use words = ::hvl::math::gamma_words<T>(BelowOne);

  ::hvl::math::gamma_constants<T> constants;
  T displacement;

  interval<T> uniforms(int k) const { return {std::is_same_v<T, float> && k == 0 ? T(-1) : T(0), T(1)}; }

  void operator()(const word_group<T, words.words>& group, T (&values)[words.values]) const {
    using ops = device_ops<T>;
    T normal[words.values];
    if constexpr (std::is_same_v<T, float>) {
      normal[0] = ::hvl::math::erfinv<ops>(group.uniforms[0]);
    } else {
      const auto pair =
          ::hvl::math::gamma_normal_pair<ops>(group.uniforms[0], group.uniforms[1], group.cells[0]);
      normal[0] = pair.sine;
      normal[1] = pair.cosine;
    }
    KESTRO_HVL_UNROLL
    for (std::uint32_t k = 0; k < words.values; ++k)
      values[k] = ::hvl::math::gamma_marsaglia<ops>(normal[k], group.uniforms[words.values + k],
                                                    group.uniforms[words.words - words.values + k], group.raw,
                                                    k, constants);
  }
};

template <class T, bool BelowOne>
using gamma_marsaglia_accurate =
    raised<gamma_marsaglia<T, BelowOne>, &gamma_marsaglia<T, BelowOne>::displacement>;

template <bool Accurate, bool BelowOne, class T>
auto gamma_of_shape(const ::hvl::math::gamma_constants<T>& constants) {
  return of_method<Accurate, gamma_marsaglia_accurate<T, BelowOne>>(
      gamma_marsaglia<T, BelowOne>{constants, constants.displacement});
}

template <bool Accurate, class T>
auto gamma_of(const ::hvl::math::gamma_constants<T>& constants) {
  const auto below_one = gamma_of_shape<Accurate, true>(constants);
  const auto others = gamma_of_shape<Accurate, false>(constants);
  using either =
      std::variant<std::remove_const_t<decltype(below_one)>, std::remove_const_t<decltype(others)>>;
  return constants.below_one ? either(below_one) : either(others);
}

} // namespace gpu

template <class T, class Method>
struct distribution_traits<gamma<T, Method>> {
  static constexpr bool is_accurate = std::is_same_v<Method, gamma_method::marsaglia_accurate>;
  static constexpr const char* name = "gamma";
  static constexpr bool needs_uniform_bits = false;
  static constexpr bool has_substreams = false;

  static auto transform_of(const gamma<T, Method>& d) {
    return gpu::gamma_of<is_accurate>(::hvl::math::gamma_constants_of<T>(d.alpha(), d.a(), d.beta()));
  }

  static int generate_on_host(const gamma<T, Method>& d, vqs_stream stream, std::int64_t n, T* r) {
    return host_function<T>(vsRngGamma_64, vdRngGamma_64)(is_accurate ? VQS_METHOD_ACCURATE : 0, stream, n, r,
                                                          d.alpha(), d.a(), d.beta());
  }
};

/// Made by gamma's kernels.
template <class T, class Method>
struct distribution_traits<chi_square<T, Method>> {
  static constexpr const char* name = "chi_square";
  static constexpr bool needs_uniform_bits = false;
  static constexpr bool has_substreams = false;

  static auto transform_of(const chi_square<T, Method>& d) {
    return gpu::gamma_of<false>(::hvl::math::chi_square_constants_of<T>(d.v()));
  }

  static int generate_on_host(const chi_square<T, Method>& d, vqs_stream stream, std::int64_t n, T* r) {
    return host_function<T>(vsRngChiSquare_64, vdRngChiSquare_64)(0, stream, n, r, d.v());
  }
};

} // namespace kestro::hvl::rng::detail
