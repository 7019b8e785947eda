// Distributions by the closed-form inverse of their distribution function. u lies in [0, 1], both ends included.
#pragma once

#include "../powr.hpp"
#include "../tan.hpp"

namespace hvl::math {

// The last step of every accurate method: no result below the displacement.
template <class O>
HVL_MATH_INLINE typename O::value raised_to(typename O::value result, typename O::scalar displacement) {
  return O::greater(result, O::set(displacement));
}

// a - beta ln u
template <class O>
HVL_MATH_INLINE typename O::value exponential_icdf(typename O::value u, typename O::scalar a,
                                                   typename O::scalar beta) {
  return O::fma(O::set(-beta), log_of_uniform<O>(u), O::set(a));
}

// a - b ln u1 where u2 <= 1/2, a + b ln u1 elsewhere
template <class O>
HVL_MATH_INLINE typename O::value laplace_icdf(typename O::value u1, typename O::value u2,
                                               typename O::scalar a, typename O::scalar b) {
  const auto lower = O::lt(O::set(typename O::scalar(0.5)), u2);
  return O::fma(O::select(lower, O::set(b), O::set(-b)), log_of_uniform<O>(u1), O::set(a));
}

// What the host forms once for weibull_icdf from the shape: its inverse, finite for every positive alpha.
template <class T>
constexpr double weibull_exponent(T alpha) {
  constexpr double greatest = 0x1.fffffffffffffp+1023;
  return static_cast<double>(alpha) * greatest < 1 ? greatest : 1 / static_cast<double>(alpha);
}

// beta (-ln u)^exponent + a, exponent = weibull_exponent(alpha). In float the power and all after it is formed in double.
template <class O>
HVL_MATH_INLINE typename O::value weibull_icdf(typename O::value u, double exponent, typename O::scalar a,
                                               typename O::scalar beta) {
  const auto base = log_of_uniform<O, -1>(u);
  if constexpr (sizeof(typename O::scalar) == 8) {
    return powr_affine<O>(base, exponent, beta, a);
  } else {
    const auto scaled_power = [=](auto wide_policy, auto x) __attribute__((always_inline)) {
      return detail::powr_affine_for_float<decltype(wide_policy)>(x, exponent, static_cast<double>(beta),
                                                                  static_cast<double>(a));
    };
    return O::widened(scaled_power, base);
  }
}

// beta sqrt(-ln u) + a
template <class O>
HVL_MATH_INLINE typename O::value rayleigh_icdf(typename O::value u, typename O::scalar a,
                                                typename O::scalar beta) {
  return O::fma(O::set(beta), O::sqrt(log_of_uniform<O, -1>(u)), O::set(a));
}

// beta ln(-ln u) + a
template <class O>
HVL_MATH_INLINE typename O::value gumbel_icdf(typename O::value u, typename O::scalar a,
                                              typename O::scalar beta) {
  const auto logarithm = log_guarded<O>(log_of_uniform<O, -1>(u));
  return O::fma(O::set(beta), logarithm, O::set(a));
}

// a + b tan(angle) for an angle in [-pi/2, pi/2], in double for both result types: a float result is this rounded.
template <class O>
HVL_MATH_INLINE typename O::value cauchy_icdf(typename O::value angle, double a, double b) {
  static_assert(sizeof(typename O::scalar) == 8);
  return O::fma(O::set(b), tan<O>(angle), O::set(a));
}

// The interval of cauchy_icdf's uniform.
inline constexpr double cauchy_low = -1.5707963267948966;
inline constexpr double cauchy_high = 1.5707963267948966;

} // namespace hvl::math
