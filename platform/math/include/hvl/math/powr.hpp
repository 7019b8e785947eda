// Powers of non-negative numbers.
#pragma once

#include "exp.hpp"
#include "log.hpp"

namespace hvl::math {
namespace detail {

// An unevaluated sum: |low| is at most an ulp or two of high.
template <class O>
struct two_part {
  typename O::value high;
  typename O::value low;
};

// a * b, the parts' product of second order left out.
template <class O>
HVL_MATH_INLINE two_part<O> product(two_part<O> a, two_part<O> b) {
  const auto high = a.high * b.high;
  const auto rounded_off = O::fma(a.high, b.high, negated<O>(high));
  return {high, O::fma(a.high, b.low, O::fma(a.low, b.high, rounded_off))};
}

// a + b for |a.high| >= |b.high| or a = 0.
template <class O>
HVL_MATH_INLINE two_part<O> sum(two_part<O> a, two_part<O> b) {
  const auto high = a.high + b.high;
  return {high, ((a.high - high) + b.high) + (a.low + b.low)};
}

// log of a positive normal double to some 64 bits: with s = (m - 1) / (m + 1) it is 2 s + s^3 (2/3 + s^2 R(s^2)), where
// all but R is carried in two parts.
template <class O>
HVL_MATH_INLINE two_part<O> log_two_part(typename O::value x) {
  static_assert(sizeof(typename O::scalar) == 8);
  constexpr double r[] = {2.0 / 5,  2.0 / 7,  2.0 / 9,  2.0 / 11, 2.0 / 13, 2.0 / 15,
                          2.0 / 17, 2.0 / 19, 2.0 / 21, 2.0 / 23, 2.0 / 25};
  const split<O> parts = split_exponent<O>(x, sqrt_half_bits<double>);
  const auto one = O::set(1.0);
  const auto numerator = parts.mantissa - one;
  const auto denominator = parts.mantissa + one;
  const auto denominator_low = parts.mantissa - (denominator - one);
  const auto reciprocal = one / denominator;
  two_part<O> s;
  s.high = numerator * reciprocal;
  const auto remainder =
      O::fma(negated<O>(s.high), denominator_low, O::fma(negated<O>(s.high), denominator, numerator));
  s.low = remainder * reciprocal;
  const two_part<O> s2 = product<O>(s, s);
  const two_part<O> two_thirds{O::set(0x1.5555555555555p-1), O::set(0x1.5555555555555p-55)};
  const two_part<O> rest{s2.high * polynomial<O>(s2.high, s2.high * s2.high, r), O::set(0.0)};
  const two_part<O> cube = product<O>(s, product<O>(s2, sum<O>(two_thirds, rest)));
  const two_part<O> of_mantissa = sum<O>({s.high + s.high, s.low + s.low}, cube);
  const two_part<O> of_exponent{parts.exponent * O::set(ln2<double>::high), // exact
                                parts.exponent * O::set(ln2<double>::low)};
  return sum<O>(of_exponent, of_mantissa);
}

template <class O>
HVL_MATH_INLINE exp_factors<O> powr_split(typename O::value x, typename O::scalar y) {
  const two_part<O> logarithm = log_two_part<O>(x);
  const auto high = logarithm.high * O::set(y);
  const auto low = O::fma(logarithm.low, O::set(y), O::fma(logarithm.high, O::set(y), negated<O>(high)));
  // beyond exp's range the low part may be no number
  const auto in_range = O::lt(magnitude<O>(high), O::set(exp_terms<double>::greatest));
  return exp_split<O>(high, O::select(in_range, low, O::set(0.0)));
}

// What a result in float needs of double: logarithm and exponential to 35 and 28 bits.
inline constexpr double log_terms_for_float[] = {
    0x1.555555b5620cbp-2, -0x1.fffffc1370781p-3, 0x1.9999227b48585p-3, -0x1.555652343f52bp-3,
    0x1.24a9abad9aa4dp-3, -0x1.ffee0a8d82864p-4, 0x1.c32a7008ea015p-4, -0x1.96824e3bd0acdp-4,
    0x1.9920d87f97162p-4, -0x1.93fdee656ebd1p-4, 0x1.b948fb34e92dap-5};
inline constexpr double exp_terms_for_float[] = {0x1.fffffb9b036cap-2, 0x1.55549168116bp-3,
                                                 0x1.5558f11f9504fp-5, 0x1.1239d38199193p-7,
                                                 0x1.6a244d0032b3p-10};

template <class O>
HVL_MATH_INLINE exp_factors<O> powr_split_for_float(typename O::value x, double y) {
  const split<O> parts = split_exponent<O>(x, sqrt_half_bits<double>);
  const auto f = parts.mantissa - O::set(1.0);
  const auto logarithm =
      O::fma(parts.exponent, O::set(ln2<double>::whole), f + log_series<O>(f, log_terms_for_float));
  return exp_assembled<O>(exp_reduce<O>(logarithm * O::set(y)), exp_terms_for_float);
}

// powr_affine with a result that is good enough for rounding it to float.
template <class O>
HVL_MATH_INLINE typename O::value powr_affine_for_float(typename O::value x, double y, double scale,
                                                        double shift) {
  const exp_factors<O> e = powr_split_for_float<O>(x, y);
  const auto general = O::fma((e.mantissa * e.first) * O::set(scale), e.second, O::set(shift));
  return O::select(O::lt(O::set(0.0), x), general, O::set(shift));
}

} // namespace detail

// x^y * scale + shift in double, for x 0 or positive and normal, y > 0 finite. Overflows and vanishes only where the
// result does.
template <class O>
HVL_MATH_INLINE typename O::value powr_affine(typename O::value x, typename O::scalar y,
                                              typename O::scalar scale, typename O::scalar shift) {
  static_assert(sizeof(typename O::scalar) == 8);
  const detail::exp_factors<O> e = detail::powr_split<O>(x, y);
  const auto general = O::fma((e.mantissa * e.first) * O::set(scale), e.second, O::set(shift));
  return O::select(O::lt(O::set(0.0), x), general, O::set(shift));
}

// x^y, for x 0 or positive and normal, y > 0 finite. In float computed through double, and so nearly always the
// nearest number.
template <class O>
HVL_MATH_INLINE typename O::value powr(typename O::value x, typename O::scalar y) {
  if constexpr (sizeof(typename O::scalar) == 8) {
    return powr_affine<O>(x, y, 1.0, 0.0);
  } else {
    const auto power = [y](auto wide_policy, auto base) __attribute__((always_inline)) {
      return detail::powr_affine_for_float<decltype(wide_policy)>(base, static_cast<double>(y), 1.0, 0.0);
    };
    return O::widened(power, x);
  }
}

} // namespace hvl::math
