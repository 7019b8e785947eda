// Bounds in float of the share of a proposal that transformed rejection accepts. They decide almost every attempt without
// the logarithms of the test, and as the test would.
//
// For laws with a variance of 2^20 and more, those without a table. With d = k - mode, the factors' numbers n at the mode
// and t the sum of all 1 / n, which is 1 / variance to 2^-18,
//
//   ln f(k) = c0 + c1 d + c2 d^2 + c3 d^3,   c1 = sum of slope (ln(mean / n) + 1 / (2 n)),
//                                            c2 = -t / 2,   c3 = sum of slope / (6 n^2),
//
// are the first Taylor terms of the sum of n ln mean - ln Gamma(n). For |d| up to 5 / sqrt(t) a number differs from n by
// less than n / 200, so the fourth derivative, as that of ln Gamma(n) is at most 2 / n^3 + 3 / n^4 + 2 / n^5, is below
// 2.04 t^3 and its term below 54 t; what the coefficients leave out of the digamma function's derivatives, for the greatest
// part sum of 1 / (4 n^2) in c2, makes 7 t. That is 5.9e-5 in all. Rounding in float adds less than 1e-5, the exponent
// being 12.6 at most, in the test less than 1e-9. So the share is off by less than 7e-5 of it, and 2^-13 is allowed on both
// sides, besides 2^-20 for what v as a float and a first attempt's v without its refinement lack.
//
// Beyond 5 / sqrt(t) the hat of these laws grows by less than the law falls, and there the share is 3.3e-4. A v below the
// law's `squeeze`, which is below 0.92, is never rejected: where s is at least 0.07 the share is least near |u| = 0.305, at
// least 0.9237 less the 1.2e-3 that rounding to k may cost.
#pragma once

#include "../exp.hpp"
#include "transformed_rejection.hpp"

namespace hvl::math {

struct rejection_curve {
  float reach;                              // of d
  float hat;                                // the slope of the hat is b (1 + hat (a / s)^2)
  float constant, linear, quadratic, cubic; // of the share's logarithm, the hat's slope apart
};

HVL_MATH_INLINE rejection_curve rejection_curve_of(const rejection_law& law) {
  using O = scalar_ops<double>;
  const rejection_terms<O> at_mode = rejection_terms_at<O>(law.mode, law);
  const double constant = O::fma(log<O>(at_mode.product), 0.5, at_mode.rest) - law.log_scale + log<O>(law.b);
  double linear = 0, sum = 0, cubic = 0;
  for (int i = 0; i < law.factors; ++i) {
    const double n = law.slope[i] * law.mode + law.offset[i];
    const double reciprocal = 1 / n;
    sum += reciprocal;
    linear += law.slope[i] * (log1p<O>((law.mean[i] - n) * reciprocal) + reciprocal / 2);
    cubic += law.slope[i] * (reciprocal * reciprocal) / 6;
  }
  const auto single = [](double x) __attribute__((always_inline)) {
    return static_cast<float>(x);
  };
  return {single(5 / O::sqrt(sum)), single(1 / (law.a * law.b)),
          single(constant),         single(linear),
          single(-sum / 2),         single(cubic)};
}

namespace detail {

// exp(x) in float to 2^-22, for |x| up to 80.
template <class O>
HVL_MATH_INLINE typename O::value rough_exp(typename O::value x) {
  static_assert(sizeof(typename O::scalar) == 4);
  const rounded<O> k = round_product<O>(x, exp_terms<float>::per_ln2);
  const auto r = O::fma(k.value, O::set(-ln2<float>::whole), x);
  const auto r2 = r * r;
  const auto mantissa = O::fma(r2, polynomial<O>(r, r2, exp_terms<float>::p), r) + O::set(1.0f);
  return O::from_bits(O::bits(mantissa) + O::template shift_left<layout<float>::mantissa_bits>(k.word));
}

} // namespace detail

// Of uniforms v on (0, 1), those below `least` are accepted, and those above `greatest` are not.
template <class O>
struct rejection_bounds {
  typename O::value least, greatest;
};

// Of the proposal k = mode + distance and its quotient, both rounded to float.
template <class O>
HVL_MATH_INLINE rejection_bounds<O>
rejection_bounds_of(typename O::value distance, typename O::value quotient, const rejection_curve& c) {
  static_assert(sizeof(typename O::scalar) == 4);
  const auto curvature = O::fma(distance, O::set(c.cubic), O::set(c.quadratic));
  const auto exponent = O::fma(distance, O::fma(distance, curvature, O::set(c.linear)), O::set(c.constant));
  const auto share =
      O::fma(quotient * quotient, O::set(c.hat), O::set(1.0f)) * detail::rough_exp<O>(exponent);
  const auto inside = O::lt(detail::magnitude<O>(distance), O::set(c.reach));
  return {O::select(inside, O::fma(share, O::set(1 - 0x1p-13f), O::set(-0x1p-20f)), O::set(0.0f)),
          O::select(inside, O::fma(share, O::set(1 + 0x1p-13f), O::set(0x1p-20f)), O::set(0x1p-11f))};
}

} // namespace hvl::math
