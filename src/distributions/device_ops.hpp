#pragma once

#include <hvl/math/ops.hpp>
#include <hvl/math/transforms/words.hpp>
#include <sycl/sycl.hpp>

namespace kestro::hvl::rng::detail::gpu {

/// The policy by which kernels evaluate the transforms of platform/math: fused multiply-add and square root are SYCL's.
template <class T>
struct device_ops : ::hvl::math::scalar_ops<T> {
  static HVL_MATH_INLINE T fma(T a, T b, T c) { return sycl::fma(a, b, c); }
  static HVL_MATH_INLINE T sqrt(T a) { return sycl::sqrt(a); }
  template <class F, class... Values>
  static HVL_MATH_INLINE T widened(const F& f, Values... a) {
    return static_cast<T>(f(device_ops<double>{}, static_cast<double>(a)...));
  }
};

/// The declaration of a method's words, as the framework asks for it.
constexpr int words_per_value_of(::hvl::math::word_use use) {
  return static_cast<int>(use.words / use.values);
}
constexpr bool in_pairs_of(::hvl::math::word_use use) {
  return use.values == 2;
}

} // namespace kestro::hvl::rng::detail::gpu
