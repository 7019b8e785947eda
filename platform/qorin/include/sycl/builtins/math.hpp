// The math builtins. Their accuracy is the C library's, which is well within what SYCL asks; fma, sqrt, and
// the roundings to integral values are exact, and one instruction where the target has it.
#pragma once

#include <math.h> // lgamma_r and exp10, which not every compiler has as builtins

#include <cstdint>

#include <sycl/builtins/elementwise.hpp>
#include <sycl/half.hpp>

namespace sycl {

// half computes in float, whose rounding to half is within the accuracy asked of half.
#define QORIN_MATH_1(name) QORIN_MATH_1_BY(name, __builtin_##name##f, __builtin_##name)
#define QORIN_MATH_1_BY(name, of_float, of_double)                                                           \
  inline float name(float x) {                                                                               \
    return of_float(x);                                                                                      \
  }                                                                                                          \
  inline double name(double x) {                                                                             \
    return of_double(x);                                                                                     \
  }                                                                                                          \
  inline half name(half x) {                                                                                 \
    return name(static_cast<float>(x));                                                                      \
  }                                                                                                          \
  QORIN_FLOATING_1(name)
#define QORIN_MATH_2(name)                                                                                   \
  inline float name(float x, float y) {                                                                      \
    return __builtin_##name##f(x, y);                                                                        \
  }                                                                                                          \
  inline double name(double x, double y) {                                                                   \
    return __builtin_##name(x, y);                                                                           \
  }                                                                                                          \
  inline half name(half x, half y) {                                                                         \
    return name(static_cast<float>(x), static_cast<float>(y));                                               \
  }                                                                                                          \
  QORIN_FLOATING_2(name)

QORIN_MATH_1(acos)
QORIN_MATH_1(acosh)
QORIN_MATH_1(asin)
QORIN_MATH_1(asinh)
QORIN_MATH_1(atan)
QORIN_MATH_1(atanh)
QORIN_MATH_1(cbrt)
QORIN_MATH_1(ceil)
QORIN_MATH_1(cos)
QORIN_MATH_1(cosh)
QORIN_MATH_1(erf)
QORIN_MATH_1(erfc)
QORIN_MATH_1(exp)
QORIN_MATH_1(exp2)
QORIN_MATH_1_BY(exp10, ::exp10f, ::exp10)
QORIN_MATH_1(expm1)
QORIN_MATH_1(fabs)
QORIN_MATH_1(floor)
QORIN_MATH_1(log)
QORIN_MATH_1(log10)
QORIN_MATH_1(log1p)
QORIN_MATH_1(log2)
QORIN_MATH_1(logb)
QORIN_MATH_1(rint)
QORIN_MATH_1(round)
QORIN_MATH_1(sin)
QORIN_MATH_1(sinh)
QORIN_MATH_1(sqrt)
QORIN_MATH_1(tan)
QORIN_MATH_1(tanh)
QORIN_MATH_1(tgamma)
QORIN_MATH_1(trunc)
QORIN_MATH_2(atan2)
QORIN_MATH_2(copysign)
QORIN_MATH_2(fdim)
QORIN_MATH_2(fmod)
QORIN_MATH_2(hypot)
QORIN_MATH_2(pow)
QORIN_MATH_2(remainder)
#undef QORIN_MATH_1
#undef QORIN_MATH_1_BY
#undef QORIN_MATH_2

inline float fma(float a, float b, float c) {
  return __builtin_fmaf(a, b, c);
}
inline double fma(double a, double b, double c) {
  return __builtin_fma(a, b, c);
}
/// In double a product of halves is exact and its sum with a half is too, or is too far from a midpoint of
/// two halves for the second rounding to matter.
inline half fma(half a, half b, half c) {
  return static_cast<double>(static_cast<float>(a)) * static_cast<double>(static_cast<float>(b)) +
         static_cast<double>(static_cast<float>(c));
}
QORIN_FLOATING_3(fma)

// The scalar forms below are one text for float, double and half.
#define QORIN_FOR_EACH_FLOATING(form) form(float) form(double) form(half)

/// The other argument where one is a NaN, in a form that a vectoriser turns into compare and select.
#define QORIN_SELECTIONS(T)                                                                                  \
  constexpr T fmax(T x, T y) {                                                                               \
    return (x < y || x != x) ? y : x;                                                                        \
  }                                                                                                          \
  constexpr T fmin(T x, T y) {                                                                               \
    return (y < x || x != x) ? y : x;                                                                        \
  }                                                                                                          \
  inline T maxmag(T x, T y) {                                                                                \
    return fabs(x) > fabs(y) ? x : fabs(y) > fabs(x) ? y : fmax(x, y);                                       \
  }                                                                                                          \
  inline T minmag(T x, T y) {                                                                                \
    return fabs(x) < fabs(y) ? x : fabs(y) < fabs(x) ? y : fmin(x, y);                                       \
  }                                                                                                          \
  constexpr T mad(T a, T b, T c) {                                                                           \
    return a * b + c;                                                                                        \
  }                                                                                                          \
  inline T rsqrt(T x) {                                                                                      \
    return T(1) / sqrt(x);                                                                                   \
  }
QORIN_FOR_EACH_FLOATING(QORIN_SELECTIONS)
#undef QORIN_SELECTIONS

QORIN_FLOATING_2(fmax)
QORIN_FLOATING_2(fmin)
QORIN_FLOATING_1_SCALAR(fmax)
QORIN_FLOATING_1_SCALAR(fmin)
QORIN_FLOATING_2(maxmag)
QORIN_FLOATING_2(minmag)
QORIN_FLOATING_3(mad)
QORIN_FLOATING_1(rsqrt)

inline float nextafter(float x, float y) {
  return __builtin_nextafterf(x, y);
}
inline double nextafter(double x, double y) {
  return __builtin_nextafter(x, y);
}
inline half nextafter(half x, half y) {
  if (x != x || y != y)
    return x + y;
  return x == y ? y : detail::neighbour(x, x < y);
}
QORIN_FLOATING_2(nextafter)

namespace detail {

/// Where x lies between multiples of a half: x = 2 n + quadrant / 2 + rest exactly, |rest| <= 1/4.
template <typename T>
struct half_turns {
  T rest;
  int quadrant;
};
template <typename T>
half_turns<T> reduce_half_turns(T x) {
  const T in_turn = remainder(x, T(2)); // exact, in [-1, 1]
  const T quadrant = rint(in_turn * T(2));
  return {in_turn - quadrant * T(0.5), static_cast<int>(quadrant) & 3};
}

inline constexpr double pi = 3.14159265358979323846;

// float goes through double; a product with pi rounded to double costs a double at most half an ulp.
template <typename T>
T sine_of_half_turns(T x) {
  if (!(fabs(x) <= std::numeric_limits<T>::max()))
    return std::numeric_limits<T>::quiet_NaN();
  const half_turns<T> turns = reduce_half_turns(x);
  const double angle = pi * static_cast<double>(turns.rest);
  const double size = turns.quadrant % 2 == 0 ? __builtin_sin(angle) : __builtin_cos(angle);
  const T result = static_cast<T>(turns.quadrant < 2 ? size : -size);
  return result == T(0) ? copysign(T(0), x) : result;
}
template <typename T>
T cosine_of_half_turns(T x) {
  if (!(fabs(x) <= std::numeric_limits<T>::max()))
    return std::numeric_limits<T>::quiet_NaN();
  const half_turns<T> turns = reduce_half_turns(x);
  const double angle = pi * static_cast<double>(turns.rest);
  const double size = turns.quadrant % 2 == 0 ? __builtin_cos(angle) : __builtin_sin(angle);
  const T result = static_cast<T>(turns.quadrant == 0 || turns.quadrant == 3 ? size : -size);
  return result == T(0) ? T(0) : result;
}

/// pow with the cases of powr: the base is never negative and 0^0, inf^0, 1^inf are no numbers.
template <typename T>
T power_of_positive(T x, T y) {
  const T inf = std::numeric_limits<T>::infinity();
  const bool undefined = x < T(0) || ((x == T(0) || x == inf) && y == T(0)) ||
                         (x == T(1) && (y == inf || y == -inf)) || x != x || y != y;
  return undefined ? std::numeric_limits<T>::quiet_NaN() : pow(fabs(x), y);
}

/// The n-th root; the reciprocal needs more digits than T has, since an exponent multiplies its error.
template <typename T>
T root(T x, int n) {
  if (n == 0 || (x < T(0) && n % 2 == 0))
    return std::numeric_limits<T>::quiet_NaN();
  const auto size = static_cast<long double>(fabs(x));
  const T result = static_cast<T>(__builtin_powl(size, 1.0L / static_cast<long double>(n)));
  return n % 2 != 0 ? copysign(result, x) : result;
}

} // namespace detail

#define QORIN_SCALED(T)                                                                                      \
  inline T sinpi(T x) {                                                                                      \
    return detail::sine_of_half_turns(x);                                                                    \
  }                                                                                                          \
  inline T cospi(T x) {                                                                                      \
    return detail::cosine_of_half_turns(x);                                                                  \
  }                                                                                                          \
  inline T tanpi(T x) {                                                                                      \
    return sinpi(x) / cospi(x);                                                                              \
  }                                                                                                          \
  inline T asinpi(T x) {                                                                                     \
    return static_cast<T>(__builtin_asin(static_cast<double>(x)) / detail::pi);                              \
  }                                                                                                          \
  inline T acospi(T x) {                                                                                     \
    return static_cast<T>(__builtin_acos(static_cast<double>(x)) / detail::pi);                              \
  }                                                                                                          \
  inline T atanpi(T x) {                                                                                     \
    return static_cast<T>(__builtin_atan(static_cast<double>(x)) / detail::pi);                              \
  }                                                                                                          \
  inline T atan2pi(T y, T x) {                                                                               \
    return static_cast<T>(__builtin_atan2(static_cast<double>(y), static_cast<double>(x)) / detail::pi);     \
  }                                                                                                          \
  inline T powr(T x, T y) {                                                                                  \
    return detail::power_of_positive(x, y);                                                                  \
  }                                                                                                          \
  inline T pown(T x, int n) {                                                                                \
    return static_cast<T>(__builtin_pow(static_cast<double>(x), static_cast<double>(n)));                    \
  }                                                                                                          \
  inline T rootn(T x, int n) {                                                                               \
    return detail::root(x, n);                                                                               \
  }                                                                                                          \
  inline T ldexp(T x, int n) {                                                                               \
    return static_cast<T>(__builtin_ldexp(static_cast<double>(x), n));                                       \
  }                                                                                                          \
  inline int ilogb(T x) {                                                                                    \
    return __builtin_ilogb(static_cast<double>(x));                                                          \
  }                                                                                                          \
  inline T lgamma(T x) {                                                                                     \
    int sign; /* not the C library's global one, which threads would race on */                              \
    return static_cast<T>(::lgamma_r(static_cast<double>(x), &sign));                                        \
  }
QORIN_FOR_EACH_FLOATING(QORIN_SCALED)
#undef QORIN_SCALED

QORIN_FLOATING_1(sinpi)
QORIN_FLOATING_1(cospi)
QORIN_FLOATING_1(tanpi)
QORIN_FLOATING_1(asinpi)
QORIN_FLOATING_1(acospi)
QORIN_FLOATING_1(atanpi)
QORIN_FLOATING_2(atan2pi)
QORIN_FLOATING_2(powr)
QORIN_FLOATING_1(lgamma)

template <typename A, detail::if_floating<A> = 0>
detail::sequence_of<A, int> ilogb(const A& a) {
  return detail::elementwise<detail::sequence_of<A, int>>([](auto x) { return ilogb(x); }, a);
}

#define QORIN_WITH_INTEGER(name)                                                                             \
  template <typename A, detail::if_floating<A> = 0>                                                          \
  detail::plain_t<A> name(const A& a, const detail::sequence_of<A, int>& n) {                                \
    return detail::elementwise<detail::plain_t<A>>([](auto x, int k) { return name(x, k); }, a, n);          \
  }
QORIN_WITH_INTEGER(pown)
QORIN_WITH_INTEGER(rootn)
QORIN_WITH_INTEGER(ldexp)
#undef QORIN_WITH_INTEGER
template <typename A, detail::if_floating<A> = 0>
detail::plain_t<A> ldexp(const A& a, int n) {
  return detail::elementwise<detail::plain_t<A>>([n](auto x) { return ldexp(x, n); }, a);
}

#undef QORIN_FOR_EACH_FLOATING
} // namespace sycl
