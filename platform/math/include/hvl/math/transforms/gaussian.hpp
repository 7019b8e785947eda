// The normal distribution.
#pragma once

#include "../erfinv.hpp"
#include "../log.hpp"
#include "../sincos.hpp"

namespace hvl::math {
namespace detail {

template <class O>
HVL_MATH_INLINE typename O::value box_muller_radius(typename O::value u1) {
  return O::sqrt(log_of_uniform<O, -2>(u1));
}

// Normal values of mean 0 and deviation 1, at a right angle to each other.
template <class O>
struct normal_pair {
  typename O::value sine;
  typename O::value cosine;
};

template <class O>
HVL_MATH_INLINE normal_pair<O> box_muller_pair(typename O::value u1, typename O::value u2) {
  const auto radius = box_muller_radius<O>(u1);
  typename O::value sine, cosine;
  sincos_turns<O>(u2, sine, cosine);
  return {radius * sine, radius * cosine};
}

} // namespace detail

// One value of two uniforms on [0, 1] (G. E. P. Box and M. E. Muller, A note on the generation of random normal
// deviates, 1958).
template <class O>
HVL_MATH_INLINE typename O::value gaussian_box_muller(typename O::value u1, typename O::value u2,
                                                      typename O::scalar mean, typename O::scalar stddev) {
  return O::fma(O::set(stddev), detail::box_muller_pair<O>(u1, u2).sine, O::set(mean));
}

// Two values of two uniforms; the first is that of gaussian_box_muller.
template <class O>
HVL_MATH_INLINE void gaussian_box_muller2(typename O::value u1, typename O::value u2, typename O::scalar mean,
                                          typename O::scalar stddev, typename O::value& first,
                                          typename O::value& second) {
  const auto pair = detail::box_muller_pair<O>(u1, u2);
  first = O::fma(O::set(stddev), pair.sine, O::set(mean));
  second = O::fma(O::set(stddev), pair.cosine, O::set(mean));
}

// What the host forms once for gaussian_icdf: stddev sqrt(2), kept finite.
template <class T>
constexpr T icdf_scale(T stddev) {
  constexpr T root = T(1.4142135623730951);
  constexpr T greatest = sizeof(T) == 4 ? T(0x1.fffffep+127) : T(0x1.fffffffffffffp+1023);
  return stddev < greatest / root ? stddev * root : greatest;
}

// mean + scale erfinv(v), scale = icdf_scale(stddev), v uniform on [-1, 1], both ends included.
template <class O>
HVL_MATH_INLINE typename O::value gaussian_icdf(typename O::value v, typename O::scalar mean,
                                                typename O::scalar scale) {
  return O::fma(O::set(scale), erfinv<O>(v), O::set(mean));
}

} // namespace hvl::math
