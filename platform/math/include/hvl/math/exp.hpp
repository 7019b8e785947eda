// Exponential.
#pragma once

#include "detail/arithmetic.hpp"

namespace hvl::math {
namespace detail {

// exp(r) = 1 + r + r^2 P(r) for |r| <= ln 2 / 2. `least` and `greatest` bound the arguments whose power of two splits
// into two normal factors; what lies beyond overflows or vanishes all the same.
template <class T>
struct exp_terms;

template <>
struct exp_terms<float> {
  static constexpr float p[] = {0x1.fffffcp-2f, 0x1.55549p-3f, 0x1.5558ap-5f, 0x1.123ac8p-7f,
                                0x1.6a604ap-10f};
  static constexpr float least = -174.0f;
  static constexpr float greatest = 176.0f;
  static constexpr float per_ln2 = 0x1.715476p+0f;
};

template <>
struct exp_terms<double> {
  static constexpr double p[] = {0x1.000000000000ap-1,  0x1.55555555554fcp-3,  0x1.5555555550688p-5,
                                 0x1.111111112725fp-7,  0x1.6c16c1848904bp-10, 0x1.a01a012dcb0c1p-13,
                                 0x1.a0199921d175fp-16, 0x1.71df1d14501bap-19, 0x1.28ae3e02f5795p-22,
                                 0x1.ad8d591184cdbp-26};
  static constexpr double least = -1416.0;
  static constexpr double greatest = 1418.0;
  static constexpr double per_ln2 = 0x1.71547652b82fep+0;
};

// exp(x) = mantissa * first * second, the latter two powers of 2 with nearly equal exponents.
template <class O>
struct exp_factors {
  typename O::value mantissa;
  typename O::value first;
  typename O::value second;
};

// x = k ln 2 + high + low, |high + low| <= ln 2 / 2; high is exact.
template <class O>
struct exp_reduced {
  typename O::word k;
  typename O::value high;
  typename O::value low;
};

template <class O, std::size_t N>
HVL_MATH_INLINE exp_factors<O> exp_assembled(exp_reduced<O> x, const typename O::scalar (&terms)[N]) {
  using T = typename O::scalar;
  using L = layout<T>;
  const auto r = x.high + x.low;
  const auto r2 = r * r;
  const auto mantissa = (x.high + O::fma(r2, polynomial<O>(r, r2, terms), x.low)) + O::set(T(1));
  // the exponent plus twice the bias, halved: each half comes out biased
  const auto both = x.k - O::set_word(rounding_word<T> - 2 * L::bias);
  const auto half = O::template shift_right<1>(both);
  return {mantissa, O::from_bits(O::template shift_left<L::mantissa_bits>(half)),
          O::from_bits(O::template shift_left<L::mantissa_bits>(both - half))};
}

template <class O>
HVL_MATH_INLINE exp_reduced<O> exp_reduce(typename O::value x) {
  using T = typename O::scalar;
  const auto clamped = O::lesser(O::greater(x, O::set(exp_terms<T>::least)), O::set(exp_terms<T>::greatest));
  const rounded<O> k = round_product<O>(clamped, exp_terms<T>::per_ln2);
  return {k.word, O::fma(k.value, O::set(-ln2<T>::high), clamped), k.value * O::set(-ln2<T>::low)};
}

template <class O>
HVL_MATH_INLINE exp_factors<O> exp_split(typename O::value x) {
  return exp_assembled<O>(exp_reduce<O>(x), exp_terms<typename O::scalar>::p);
}

// exp(x + low) for |low| far below |x|.
template <class O>
HVL_MATH_INLINE exp_factors<O> exp_split(typename O::value x, typename O::value low) {
  exp_reduced<O> r = exp_reduce<O>(x);
  r.low = r.low + low;
  return exp_assembled<O>(r, exp_terms<typename O::scalar>::p);
}

} // namespace detail

// exp(x) for every x: infinity above the range, gradual underflow below it, NaN stays NaN.
template <class O>
HVL_MATH_INLINE typename O::value exp(typename O::value x) {
  const detail::exp_factors<O> e = detail::exp_split<O>(x);
  return (e.mantissa * e.first) * e.second;
}

// exp(x) * scale + shift. Overflows and vanishes only where the result does, not where exp(x) alone would.
template <class O>
HVL_MATH_INLINE typename O::value exp_affine(typename O::value x, typename O::scalar scale,
                                             typename O::scalar shift) {
  const detail::exp_factors<O> e = detail::exp_split<O>(x);
  return O::fma((e.mantissa * e.first) * O::set(scale), e.second, O::set(shift));
}

} // namespace hvl::math
