// The beta distribution by rejection. With L = ln(u1 / (1 - u1)) a logistic variable, the value with the odds
// exp(slope L) around the mode is accepted with the probability exp(h) / (4 u1 (1 - u1)): R. C. H. Cheng, Generating beta
// variates with nonintegral shape parameters, 1978, whose methods BB (shapes above 1) and BC differ in the slope alone.
// With a <= b the shapes, s = a + b, p = a / s, q = b / s and V = slope L, the odds of the value of shapes (a, b) are
// e^V p / q, and
//
//   h = a V - s ln(q + p e^V) = a V - s (ln q + softplus(V + ln(p / q))),   softplus(z) = ln(1 + e^z).
//
// At large shapes these terms, great and nearly equal, leave no digits of h. There |V| is small, and h is minus s times
// the cumulant series of a Bernoulli variable of probability p, less its mean.
//
// Shapes that are small both: M. D. Joehnk, Erzeugung von betaverteilten und gammaverteilten Zufallszahlen, 1964. With
// x = u1^(1/p), y = u2^(1/q) the value x / (x + y) is accepted where x + y <= 1; in logarithms, as the powers underflow.
#pragma once

#include "../exp.hpp"
#include "../log.hpp"
#include "attempt_words.hpp"

namespace hvl::math {

// An attempt is rejected with a probability below 0.35 where both shapes are above 1 or both small, and below 0.75 at the
// worst, one of them small: all 256 with less than 2e-32. The value is then that of the mode.
inline constexpr std::uint32_t beta_attempts = 256;
inline constexpr std::uint32_t beta_hash_key = 0x62657461;

enum class beta_form : std::uint32_t { joehnk, cheng, cheng_series };

// What the host forms once from the parameters, in double for both result types.
struct beta_constants {
  beta_form form;
  double exponent_p, exponent_q; // joehnk: 1 / p, 1 / q
  double slope, offset, sign;    // cheng: the logit of the value is sign (slope L + offset)
  double least, quarter_sum;     // a, s / 4, which is finite
  double four_log_q;             // 4 ln q
  double series[7];              // h = -V^2 (series[0] + series[1] V + ...)
  double scale, displacement;
};

HVL_MATH_INLINE beta_constants beta_constants_of(double p_shape, double q_shape, double displacement,
                                                 double scale) {
  using O = scalar_ops<double>;
  beta_constants c{};
  c.scale = scale;
  c.displacement = displacement;
  const double a = O::lesser(p_shape, q_shape), b = O::greater(p_shape, q_shape);
  constexpr double greatest_exponent = 0x1p1013; // times the logarithm of a uniform still finite
  const auto inverse = [](double shape) __attribute__((always_inline)) {
    return shape * greatest_exponent < 1 ? greatest_exponent : 1 / shape;
  };
  if (a <= 0.5 && b <= 1) {
    c.form = beta_form::joehnk;
    c.sign = 1;
    // values of shapes this small are 0 or 1, by the ratio of the shapes
    const double up = b < 0x1p-100 ? 0x1p-100 / b : 1;
    c.exponent_p = inverse(p_shape * up);
    c.exponent_q = inverse(q_shape * up);
    return c;
  }
  const double p = 1 / (1 + b / a), q = 1 / (1 + a / b); // b / a may be infinite
  const double quarter_sum = a / 4 + b / 4;
  constexpr double least_normal = 0x1p-1022;
  // Cheng's sqrt((s - 2) / (2 a b - s)), which is 0 / 0 where both shapes are 1
  const double x = a - 1, y = b - 1;
  c.slope = a <= 1 ? inverse(a) : O::sqrt(1 / (1 + 2 * (x / (1 + x / y))));
  c.offset = log<O>(O::greater(a, least_normal)) - log<O>(b);
  c.sign = p_shape <= q_shape ? 1 : -1;
  c.least = a;
  c.quarter_sum = quarter_sum;
  c.four_log_q = 4 * log1p<O>(-p);
  // |L| is at most 42, and the first term left out then 2e-12 of h
  c.form = c.slope < 0x1p-10 ? beta_form::cheng_series : beta_form::cheng;
  const double pq = p * q, skew = q - p, first = a * q;
  c.series[0] = first / 2;
  c.series[1] = first * skew / 6;
  c.series[2] = first * (1 - 6 * pq) / 24;
  c.series[3] = first * skew * (1 - 12 * pq) / 120;
  c.series[4] = first * (1 - pq * (30 - 120 * pq)) / 720;
  c.series[5] = first * skew * (1 - pq * (60 - 360 * pq)) / 5040;
  c.series[6] = first * (1 - pq * (126 - pq * (1680 - 5040 * pq))) / 40320;
  return c;
}

// One attempt: the value, NaN where it is rejected. u1 and u2 are uniforms on [0, 1], words scaled in steps of `cell`; of u1
// the middle of the cell is taken, so that no odds are 0 or infinite.
template <class O>
HVL_MATH_INLINE typename O::value beta_attempt(typename O::value u1, typename O::value u2, double cell,
                                               const beta_constants& c) {
  static_assert(sizeof(typename O::scalar) == 8);
  using value = typename O::value;
  const auto one = O::set(1.0);
  const value u = O::lesser(u1 + O::set(cell / 2), O::set(1 - 0x1p-53));
  value logit, v{}, highest{};
  if (c.form == beta_form::joehnk) {
    const auto x = log<O>(u) * O::set(c.exponent_p);
    const auto y = log_guarded<O>(u2) * O::set(c.exponent_q);
    logit = x - y;
    highest = O::greater(x, y);
  } else {
    v = log<O>(u / (one - u)) * O::set(c.slope);
    logit = v + O::set(c.offset);
  }
  const auto t = exp<O>(detail::negated<O>(detail::magnitude<O>(logit)));
  const auto sum = one + t;
  const auto reciprocal = one / sum;
  // log1p(t), whose quotient serves the value, too
  const auto log_sum = [&]() __attribute__((always_inline)) {
    const detail::log_parts<O> parts = detail::log_split<O>(sum);
    return parts.head + O::fma(t - (sum - one), reciprocal, parts.tail);
  };
  value excess; // of what must not be positive
  if (c.form == beta_form::joehnk) {
    excess = highest + log_sum();
  } else {
    value h;
    if (c.form == beta_form::cheng) {
      const auto softplus = O::greater(logit, O::set(0.0)) + log_sum();
      h = O::fma(O::set(-c.quarter_sum), O::fma(O::set(4.0), softplus, O::set(c.four_log_q)),
                 O::set(c.least) * v);
    } else {
      h = v * v * detail::negated<O>(detail::polynomial<O>(v, c.series));
    }
    excess = log_guarded<O>(O::set(4.0) * (u * (one - u)) * u2) - h;
  }
  const auto lower = O::lt(logit * O::set(c.sign), O::set(0.0));
  // each side of 1/2 from its own end, where neighbours are closest
  const auto nearer = t * reciprocal;
  const auto x = O::select(lower, nearer, one - nearer);
  const auto result = O::fma(O::set(c.scale), x, O::set(c.displacement));
  return O::select(O::lt(O::set(0.0), excess), O::set(__builtin_nan("")), result);
}

// The value where all attempts fail.
template <class O>
HVL_MATH_INLINE double beta_of_mode(const beta_constants& c) {
  return beta_attempt<O>(0.5, 0.0, 0.0, c);
}

// The first value that is accepted from attempt 1 on, which takes the first two words of attempt_words, scaled as an
// engine's. O is a policy of one number.
template <class O>
HVL_MATH_INLINE double beta_further(const std::uint32_t (&own)[2], const beta_constants& c) {
  constexpr double cell = 0x1p-32;
  for (std::uint32_t attempt = 1; attempt < beta_attempts; ++attempt) {
    const philox_block hash = attempt_words(own, attempt, beta_hash_key);
    const auto unit = [&](int k) __attribute__((always_inline)) {
      return static_cast<double>(static_cast<std::int32_t>(hash.word[k])) * cell + 0.5;
    };
    const double value = beta_attempt<O>(unit(0), unit(1), cell, c);
    if (value == value)
      return value;
  }
  return beta_of_mode<O>(c);
}

// One value whole, for a policy of one number; u1 and u2 as above.
template <class O>
HVL_MATH_INLINE double beta_cheng_johnk(double u1, double u2, double cell, const std::uint32_t (&own)[2],
                                        const beta_constants& c) {
  const double first = beta_attempt<O>(u1, u2, cell, c);
  return first == first ? first : beta_further<O>(own, c);
}

} // namespace hvl::math
