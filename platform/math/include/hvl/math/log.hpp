// Natural logarithm.
#pragma once

#include "detail/arithmetic.hpp"

namespace hvl::math {
namespace detail {

// log(1 + f) = f - f^2 / 2 + f^3 P(f), for 1 + f in [sqrt(1/2), sqrt(2)] and in (1/2, 1].
template <class T>
struct log_terms;

template <>
struct log_terms<float> {
  static constexpr float p[] = {0x1.55557p-2f,  -0x1.000234p-2f, 0x1.99944ep-3f, -0x1.5466fep-3f,
                                0x1.239ce2p-3f, -0x1.0e96ccp-3f, 0x1.015974p-3f, -0x1.2a6f78p-4f};
  static constexpr float below_one[] = {0x1.554f2ep-2f,  -0x1.01009ep-2f, 0x1.79ae6p-3f,  -0x1.2ca06ap-2f,
                                        -0x1.c4e85ep-2f, -0x1.afd4ecp0f,  -0x1.179de6p1f, -0x1.9e2986p0f};
};

template <>
struct log_terms<double> {
  static constexpr double p[] = {
      0x1.5555555555533p-2, -0x1.fffffffffef15p-3, 0x1.999999999f7b1p-3, -0x1.555555566b2e2p-3,
      0x1.24924922a1c3fp-3, -0x1.ffffff2bf976ap-4, 0x1.c71c71e0e7382p-4, -0x1.9999c26b565f2p-4,
      0x1.745d3f05531ecp-4, -0x1.5550ee61b22b6p-4, 0x1.3b0b8aab780d4p-4, -0x1.24d750fa98fc2p-4,
      0x1.11ccf0938419ap-4, -0x1.fba17fc00a87cp-5, 0x1.d05b071cb3a22p-5, -0x1.d1219b5976b07p-5,
      0x1.0a61e2b9417ddp-4, -0x1.ea00580772673p-5, 0x1.ac6cc4d88acfap-6};
};

// log(1 + f) - f
template <class O, std::size_t N>
HVL_MATH_INLINE typename O::value log_series(typename O::value f, const typename O::scalar (&terms)[N]) {
  const auto f2 = f * f;
  return O::fma(f2, f * polynomial<O>(f, f2, terms), f2 * O::set(typename O::scalar(-0.5)));
}

// log(x) = head + tail
template <class O>
struct log_parts {
  typename O::value head;
  typename O::value tail;
};

template <class O>
HVL_MATH_INLINE log_parts<O> log_split(typename O::value x) {
  using T = typename O::scalar;
  const split<O> s = split_exponent<O>(x, sqrt_half_bits<T>);
  const auto f = s.mantissa - O::set(T(1));
  const auto series = log_series<O>(f, log_terms<T>::p);
  constexpr T high = ln2<T>::high / exponent_unit<T>;
  constexpr T low = ln2<T>::low / exponent_unit<T>;
  const auto tail = O::fma(s.exponent, O::set(low), series);
  const auto head = O::fma(s.exponent, O::set(high), f);
  if constexpr (sizeof(T) == 8)
    return {head, tail};
  // what rounding took from head: without it the error would pass one ulp
  const auto lost = f - O::fma(s.exponent, O::set(-high), head);
  return {head, lost + tail};
}

} // namespace detail

// Logarithm of a positive normal number. Other arguments give no meaningful result.
template <class O>
HVL_MATH_INLINE typename O::value log(typename O::value x) {
  const detail::log_parts<O> parts = detail::log_split<O>(x);
  return parts.head + parts.tail;
}

// log(1 + x) for x > -1 finite: the logarithm of the rounded sum, and what the rounding took.
template <class O>
HVL_MATH_INLINE typename O::value log1p(typename O::value x) {
  const auto one = O::set(typename O::scalar(1));
  const auto sum = one + x;
  const auto lost = x - (sum - one); // exact where it counts
  const detail::log_parts<O> parts = detail::log_split<O>(sum);
  return parts.head + (parts.tail + lost / sum);
}

namespace detail {

// log(1 + f) - f = -f^2 / 2 + f^3 P(f) on the same interval, of least error relative to the difference
inline constexpr double log1pmx_terms[] = {
    0x1.5555555555556p-2, -0x1.fffffffffffecp-3, 0x1.999999999902ep-3, -0x1.555555555764bp-3,
    0x1.2492492537132p-3, -0x1.fffffffebe047p-4, 0x1.c71c713d1845ep-4, -0x1.999999668f64ap-4,
    0x1.745d340ee933bp-4, -0x1.55557b8473b74p-4, 0x1.3b10610f84a21p-4, -0x1.248b352f51a3cp-4,
    0x1.1147c6c559a6bp-4, -0x1.00a35dcf13a9ep-4, 0x1.de4a58bf13d4p-5,  -0x1.b78a3306c9a2dp-5,
    0x1.b7295159db991p-5, -0x1.f64061df5d766p-5, 0x1.d2dd1c9296a22p-5, -0x1.9f2e4d8f9aap-6};

} // namespace detail

// log(1 + x) - x for x > -1 finite, in double, with the relative accuracy of a difference that does not cancel: the
// logarithm's own series where 1 + x needs no power of 2 split off.
template <class O>
HVL_MATH_INLINE typename O::value log1pmx(typename O::value x) {
  static_assert(sizeof(typename O::scalar) == 8);
  const auto one = O::set(1.0);
  const auto sum = one + x;
  const auto lost = x - (sum - one);
  const detail::split<O> s = detail::split_exponent<O>(sum, detail::sqrt_half_bits<double>);
  const auto unsplit = O::lt(detail::magnitude<O>(s.exponent), O::set(0.5));
  const auto f = O::select(unsplit, x, s.mantissa - one);
  const auto f2 = f * f;
  const auto f2_low = O::fma(f, f, detail::negated<O>(f2));
  const auto half = O::set(-0.5);
  const auto cubic = f2 * (f * detail::polynomial<O>(f, f2, detail::log1pmx_terms));
  const auto high = O::set(detail::ln2<double>::high);
  const auto head = O::fma(s.exponent, high, f);
  const auto rounded_off = f - O::fma(detail::negated<O>(s.exponent), high, head);
  const auto tail = O::fma(s.exponent, O::set(detail::ln2<double>::low), rounded_off + lost / sum);
  const auto of_exponent = O::select(unsplit, O::set(0.0), (head - x) + tail);
  return O::fma(f2, half, O::fma(f2_low, half, cubic) + of_exponent);
}

namespace detail {

template <class T, std::size_t N>
struct coefficient_list {
  T c[N];
};

// Q with Q(factor x) = P(x) / factor^2. Exact for a factor that is a power of two.
template <class T, std::size_t N>
constexpr coefficient_list<T, N> stretched(const T (&p)[N], T factor) {
  coefficient_list<T, N> q{};
  T power = factor * factor;
  for (std::size_t i = 0; i < N; ++i, power *= factor)
    q.c[i] = p[i] / power;
  return q;
}

} // namespace detail

// The logarithm of the smallest positive subnormal number.
template <class T>
inline constexpr T log_of_zero = T(-103.27893);
template <>
inline constexpr double log_of_zero<double> = -744.4400719213812;

// log(x), and log_of_zero for 0; NaN stays NaN. x is 0, positive and normal, or NaN.
template <class O>
HVL_MATH_INLINE typename O::value log_guarded(typename O::value x) {
  using T = typename O::scalar;
  return O::select(O::lt(O::set(T(0)), x), log<O>(x), O::set(log_of_zero<T>) + x);
}

// Factor * log_guarded(x) of a uniform, 0 or normal and at most 1. Factor is a power of two, its sign included. Less work
// than log_guarded in float: with the mantissa in (1/2, 1] both addends have one sign, and the factor costs nothing.
template <class O, int Factor = 1>
HVL_MATH_INLINE typename O::value log_of_uniform(typename O::value x) {
  using T = typename O::scalar;
  if constexpr (sizeof(T) == 8) {
    return Factor == 1 ? log_guarded<O>(x) : O::set(T(Factor)) * log_guarded<O>(x);
  } else {
    constexpr auto half = detail::layout<T>::one - (detail::layout<T>::mantissa_mask + 1);
    constexpr T unit = detail::exponent_unit<T>;
    constexpr auto terms = detail::stretched(detail::log_terms<T>::below_one, T(Factor));
    const detail::split<O> s = detail::split_exponent<O>(x, half + 1);
    const auto f = O::fma(s.mantissa, O::set(T(Factor)), O::set(T(-Factor))); // of the mantissa less 1; exact
    const auto f2 = f * f;
    const auto slope = O::fma(f, detail::polynomial<O>(f, f2, terms.c), O::set(T(-0.5) / Factor));
    const auto of_mantissa = O::fma(f2, slope, f);
    // the mantissa of 0 comes out as 1, and -149 ln 2 rounds to log_of_zero
    const auto exponent = O::select(O::lt(O::set(T(0)), x), s.exponent, O::set(-149 * unit));
    return O::fma(exponent, O::set(Factor * detail::ln2<T>::whole / unit), of_mantissa);
  }
}

} // namespace hvl::math
