// The gamma distribution by rejection (G. Marsaglia and W. W. Tsang, A simple method for generating gamma variables,
// 2000). With d = alpha - 1/3, x normal and w = x / (3 sqrt(d)) the value d (1 + w)^3 is accepted with the probability
// exp(h) where 1 + w > 0, and else never. The authors' exponent x^2 / 2 + d - d (1 + w)^3 + 3 d ln(1 + w) is, as its
// Taylor terms up to w^3 cancel,
//
//   h = 3 d (ln(1 + w) - w + w^2 / 2 - w^3 / 3) = -3 d w^4 J(w),   J(w) = integral over s in [0, 1] of s^3 / (1 + w s).
//
// Squeeze: 1 / (1 + w s) is convex in s, so below its chord 1 - s + s / (1 + w); hence J <= 1/20 + 1 / (5 (1 + w)), with
// equality in value and slope at w = 0. As exp(h) >= 1 + h, every u is accepted for which
//
//   (1 - u) (1 + w) > 3 d w^4 (4 + (1 + w)) / 20 = x^4 (4 + (1 + w)) / (540 d),
//
// which needs no division, is false where 1 + w <= 0 (5 + w is positive: w > -0.41 |x|, |x| < 12) and leaves 6 % of the
// values undecided at alpha = 1, 1.5 % at 2.5.
// Shapes below 1 take a value of shape alpha + 1 times u^(1 / alpha).
#pragma once

#include "../exp.hpp"
#include "../log.hpp"
#include "attempt_words.hpp"
#include "gaussian.hpp"

namespace hvl::math {

// At alpha = 1, where it is greatest, an attempt is rejected with probability 0.049: all 32 with less than 2e-42. The
// value is then that of x = 0.
inline constexpr std::uint32_t gamma_attempts = 32;
inline constexpr std::uint32_t gamma_hash_key =
    0x67616D61; // of the first value of a group, the second's is one more

// What the host forms once from the parameters. e = x / sqrt(2) stands for the normal number: in float it is erfinv(v),
// v uniform on [-1, 1], in double one of gamma_normal_pair.
template <class T>
struct gamma_constants {
  T slope;   // w = slope e
  T squeeze; // (1 - u) (1 + w) > squeeze e^4 (5 + w)
  // the core is base + (base_low + scale y (y (y + quadratic) + linear)), y = w + offset: the cube of 1 + w, or, at large
  // shapes, where 1 + w would lose the last bits of w, its difference from 1
  T offset, linear, quadratic;
  T scale, base, base_low;
  T exponent;     // 1 / alpha
  T displacement; // added to base, or at shapes below 1 after the power
  bool below_one; // alpha < 1: the core is still to be multiplied by the power of a uniform
  // for the test, and the cores of further attempts
  double wide_slope, triple_d, wide_scale, wide_base;
};

template <class T>
HVL_MATH_INLINE gamma_constants<T> gamma_constants_of(double shape, double a, double beta) {
  constexpr double greatest = sizeof(T) == 4 ? 0x1.fffffep+127 : 0x1.fffffffffffffp+1023;
  const auto finite = [](double x) __attribute__((always_inline)) {
    return scalar_ops<double>::lesser(x, greatest);
  };
  gamma_constants<T> c{};
  c.below_one = shape < 1;
  const double d = (c.below_one ? shape + 1 : shape) - 1.0 / 3;
  c.wide_slope = 1.4142135623730951 / (3 * scalar_ops<double>::sqrt(d));
  c.triple_d = finite(3 * d);
  c.wide_scale = finite(d * beta);
  c.wide_base = c.below_one ? 0.0 : a;
  c.slope = static_cast<T>(c.wide_slope);
  c.squeeze = static_cast<T>(1 / finite(135 * d));
  c.scale = static_cast<T>(c.wide_scale);
  c.exponent = static_cast<T>(finite(1 / shape));
  c.displacement = static_cast<T>(a);
  if (d < 64) {
    c.offset = 1;
    c.base = static_cast<T>(c.wide_base);
  } else {
    c.linear = c.quadratic = 3;
    const double base = scalar_ops<double>::greater(finite(c.wide_scale + a), -greatest);
    c.base = static_cast<T>(base);
    c.base_low = static_cast<T>(base - static_cast<double>(c.base));
  }
  return c;
}

// The sum of the squares of v independent normal numbers.
template <class T>
HVL_MATH_INLINE gamma_constants<T> chi_square_constants_of(std::int32_t v) {
  return gamma_constants_of<T>(0.5 * v, 0, 2);
}

// The core is d (1 + w)^3 beta, the displacement added unless the shape is below 1.
template <class O>
struct gamma_attempt {
  typename O::value core;
  typename O::mask accepted;
};

// Two numbers e of two uniforms on [0, 1], words scaled in steps of `cell`, by Box and Muller's method: it costs half the
// time of two inversions in double. The radius takes the middle of the cell, so that a word of 0 is no outlier.
template <class O>
HVL_MATH_INLINE detail::normal_pair<O> gamma_normal_pair(typename O::value u1, typename O::value u2,
                                                         typename O::scalar cell) {
  using T = typename O::scalar;
  const auto radius = O::sqrt(log_of_uniform<O, -1>(u1 + O::set(cell * T(0.5))));
  typename O::value sine, cosine;
  sincos_turns<O>(u2, sine, cosine);
  return {radius * sine, radius * cosine};
}

// Attempt 0, by the squeeze alone; u uniform on [0, 1].
template <class O>
HVL_MATH_INLINE gamma_attempt<O> gamma_squeezed(typename O::value e, typename O::value u,
                                                const gamma_constants<typename O::scalar>& c) {
  using T = typename O::scalar;
  const auto slope = O::set(c.slope);
  const auto t = O::fma(slope, e, O::set(T(1)));
  const auto y = O::fma(slope, e, O::set(c.offset));
  const auto cubic = y * O::fma(y, y + O::set(c.quadratic), O::set(c.linear));
  const auto e2 = e * e;
  const auto threshold = (e2 * O::set(c.squeeze)) * (e2 * (t + O::set(T(4))));
  return {O::set(c.base) + O::fma(O::set(c.scale), cubic, O::set(c.base_low)),
          O::lt(threshold, (O::set(T(1)) - u) * t)};
}

// The test itself, in double for both result types: ln u < h. Rounding moves h by some 2^-50 sqrt(d).
template <class O, class T>
HVL_MATH_INLINE typename O::mask gamma_accepts(typename O::value e, typename O::value u,
                                               const gamma_constants<T>& c) {
  static_assert(sizeof(typename O::scalar) == 8);
  const auto w = O::set(c.wide_slope) * e;
  const auto least = O::set(-1 + 0x1p-52);
  const auto inside = O::lt(least, w);
  const auto logarithm = log1p<O>(O::select(inside, w, O::set(0.0)));
  const auto taylor = w * O::fma(w, O::fma(w, O::set(1.0 / 3), O::set(-0.5)), O::set(1.0));
  const auto h = O::set(c.triple_d) * (logarithm - taylor);
  return O::lt(log_guarded<O>(u), O::select(inside, h, O::set(-0x1p1000)));
}

// The core in double: for both result types that of further attempts, rounded to the result type.
template <class O, class T>
HVL_MATH_INLINE typename O::value gamma_wide_core(typename O::value e, const gamma_constants<T>& c) {
  static_assert(sizeof(typename O::scalar) == 8);
  const auto t = O::fma(O::set(c.wide_slope), e, O::set(1.0));
  return O::fma(O::set(c.wide_scale), t * (t * t), O::set(c.wide_base));
}

// The uniforms of attempt 1, 2, ... of the group whose own words are given, v on [-1, 1] in both types; `which` value of
// the group.
struct gamma_uniforms {
  double v;
  double u;
};

template <std::size_t N>
HVL_MATH_INLINE constexpr gamma_uniforms gamma_attempt_uniforms(const std::uint32_t (&own)[N],
                                                                std::uint32_t which, std::uint32_t attempt) {
  const philox_block hash = attempt_words(own, attempt, gamma_hash_key + which);
  return {attempt_symmetric(hash.word[0], hash.word[1]), attempt_uniform(hash.word[2])};
}

// The core of the first attempt from 1 on that is accepted. O is a policy of one number.
template <class O, class T, std::size_t N>
HVL_MATH_INLINE double gamma_further_core(const std::uint32_t (&own)[N], std::uint32_t which,
                                          const gamma_constants<T>& c) {
  for (std::uint32_t attempt = 1; attempt < gamma_attempts; ++attempt) {
    const gamma_uniforms r = gamma_attempt_uniforms(own, which, attempt);
    const double e = erfinv<O>(r.v);
    if (gamma_accepts<O>(e, r.u, c))
      return gamma_wide_core<O>(e, c);
  }
  return gamma_wide_core<O>(0.0, c);
}

// Shapes below 1: core * u^(1 / alpha) + displacement, u uniform on [0, 1]. Vanishes only where the result does.
template <class O>
HVL_MATH_INLINE typename O::value gamma_powered(typename O::value core, typename O::value u,
                                                const gamma_constants<typename O::scalar>& c) {
  const auto power = detail::exp_split<O>(log_of_uniform<O>(u) * O::set(c.exponent));
  return O::fma((power.mantissa * power.first) * core, power.second, O::set(c.displacement));
}

// One value whole, for a policy of one number: e, u and power as above; power is read at shapes below 1 only.
template <class O, std::size_t N>
HVL_MATH_INLINE typename O::scalar gamma_marsaglia(typename O::scalar e, typename O::scalar u,
                                                   typename O::scalar power, const std::uint32_t (&own)[N],
                                                   std::uint32_t which,
                                                   const gamma_constants<typename O::scalar>& c) {
  const gamma_attempt<O> first = gamma_squeezed<O>(e, u, c);
  auto core = first.core;
  if (!first.accepted) {
    const auto decided = [&](auto wide_policy, double wide_e, double wide_u, double wide_core)
        __attribute__((always_inline)) {
      using W = decltype(wide_policy);
      return gamma_accepts<W>(wide_e, wide_u, c) ? wide_core : gamma_further_core<W>(own, which, c);
    };
    if constexpr (sizeof(core) == 8)
      core = decided(O{}, e, u, core);
    else
      core = O::widened(decided, e, u, core);
  }
  return c.below_one ? gamma_powered<O>(core, power, c) : core;
}

} // namespace hvl::math
