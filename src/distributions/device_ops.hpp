#pragma once

#include <hvl/math/ops.hpp>
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

} // namespace kestro::hvl::rng::detail::gpu
