#pragma once

#include <hvl/math/ops.hpp>
#include <hvl/math/transforms/inverse_cdf.hpp>
#include <sycl/sycl.hpp>

#include "framework/transform.hpp"
#include "service/portability.hpp"

namespace kestro::hvl::rng::detail::gpu {

/// The policy by which kernels evaluate the transforms of platform/math: fused multiply-add and square root are SYCL's. A
/// device rounds the root of a double once, but need not do so for a float (full profile; 3 ulp): the root of the widened
/// float, rounded again, is what one rounding gives, as 53 >= 2 * 24 + 2.
template <class T>
struct device_ops : ::hvl::math::scalar_ops<T> {
  static HVL_MATH_INLINE T fma(T a, T b, T c) { return sycl::fma(a, b, c); }
  static HVL_MATH_INLINE T sqrt(T a) { return static_cast<T>(sycl::sqrt(static_cast<double>(a))); }
  template <class F, class... Values>
  static HVL_MATH_INLINE T widened(const F& f, Values... a) {
    return static_cast<T>(f(device_ops<double>{}, static_cast<double>(a)...));
  }
};

/// The last step of accurate methods: the values of `Plain`, none below `Displacement`, which is a member of it.
template <class Plain, auto Displacement>
struct raised : Plain {
  void operator()(const word_group<typename Plain::uniform_type, Plain::words.words>& group,
                  typename Plain::result_type (&values)[Plain::words.values]) const {
    Plain::operator()(group, values);
    KESTRO_HVL_UNROLL
    for (auto& value : values)
      value = ::hvl::math::raised_to<device_ops<typename Plain::result_type>>(value, this->*Displacement);
  }
};

/// The transform of a method: `plain`, or `Raised` of it if the method is accurate.
template <bool Accurate, class Raised, class Plain>
auto of_method(const Plain& plain) {
  if constexpr (Accurate)
    return Raised{plain};
  else
    return plain;
}

} // namespace kestro::hvl::rng::detail::gpu
