// Which parameters the distributions take: one definition for the C functions and for callers that build a distribution
// before they reach one. Each function gives what is wrong, in words that name the parameter, or null. Ask in the
// default floating-point environment: under another rounding an overflow can pass, under another treatment of
// subnormals a small scale can fail.
#pragma once

#include <cmath>
#include <cstdint>
#include <type_traits>

#include <hvl/math/transforms/gaussian_mv.hpp>

namespace hvl::streams {

// False for NaN, too.
template <class T>
bool is_positive(T x) {
  return x > T(0) && std::isfinite(x);
}

// Besides the bounds, uniform_coefficients forms b - a and a + b.
template <class T>
const char* uniform_fault(T a, T b) {
  if (!(a < b))
    return "a >= b";
  if constexpr (std::is_floating_point_v<T>)
    if (!std::isfinite(b - a) || !std::isfinite(b + a))
      return "b - a or a + b is not finite";
  return nullptr;
}

template <class T>
const char* gaussian_fault(T mean, T stddev) {
  return !std::isfinite(mean) ? "mean is not finite" : !is_positive(stddev) ? "stddev <= 0" : nullptr;
}

template <class T>
const char* lognormal_fault(T m, T s, T displ, T scale) {
  return !std::isfinite(m)       ? "m is not finite"
         : !is_positive(s)       ? "s <= 0"
         : !std::isfinite(displ) ? "displ is not finite"
         : !is_positive(scale)   ? "scale <= 0"
                                 : nullptr;
}

// exponential, rayleigh, gumbel
template <class T>
const char* displaced_fault(T a, T beta) {
  return !std::isfinite(a) ? "a is not finite" : !is_positive(beta) ? "beta <= 0" : nullptr;
}

// laplace, cauchy
template <class T>
const char* centred_fault(T a, T b) {
  return !std::isfinite(a) ? "a is not finite" : !is_positive(b) ? "b <= 0" : nullptr;
}

template <class T>
const char* weibull_fault(T alpha, T a, T beta) {
  return !is_positive(alpha) ? "alpha <= 0" : displaced_fault(a, beta);
}

template <class T>
const char* gamma_fault(T alpha, T a, T beta) {
  return weibull_fault(alpha, a, beta);
}

template <class T>
const char* beta_fault(T p, T q, T a, T beta) {
  return !is_positive(p)                       ? "p <= 0"
         : !is_positive(q)                     ? "q <= 0"
         : displaced_fault(a, beta) != nullptr ? displaced_fault(a, beta)
         : !std::isfinite(a + beta)            ? "a + beta is not finite"
                                               : nullptr;
}

inline const char* gaussian_mv_fault(std::int32_t dimen, std::int32_t mstorage) {
  return !(dimen > 0) ? "dimen <= 0" : mstorage < 0 || mstorage > 2 ? "mstorage is none of 0, 1, 2" : nullptr;
}

// Of dimension and storage that have no fault.
template <class T>
const char* gaussian_mv_fault(std::int32_t dimen, std::int32_t mstorage, const T* a, const T* t) {
  const auto dimension = static_cast<std::size_t>(dimen);
  const auto storage = static_cast<math::matrix_storage>(mstorage);
  for (std::size_t k = 0; k < dimension; ++k) {
    if (!std::isfinite(a[k]))
      return "a is not finite";
    const math::matrix_row row = math::row_of(storage, dimension, k);
    for (std::size_t j = row.first; j <= k; ++j)
      if (!std::isfinite(t[row.start + j]))
        return "t is not finite";
  }
  return nullptr;
}

inline const char* chi_square_fault(std::int32_t v) {
  return !(v > 0) ? "v <= 0" : nullptr;
}

inline const char* geometric_fault(double p) {
  return !(p > 0 && p <= 1) ? "p is not in (0, 1]" : nullptr;
}

inline const char* bernoulli_fault(double p) {
  return !(p >= 0 && p <= 1) ? "p is not in [0, 1]" : nullptr;
}

inline const char* poisson_fault(double lambda) {
  return !(lambda >= 0 && std::isfinite(lambda)) ? "lambda < 0" : nullptr;
}

inline const char* binomial_fault(std::int32_t ntrial, double p) {
  return ntrial < 0 ? "ntrial < 0" : bernoulli_fault(p);
}

inline const char* multinomial_fault(std::int32_t ntrial, std::int32_t k) {
  return ntrial < 0 ? "ntrial < 0" : k < 1 ? "k < 1" : nullptr;
}

// Of a number of outcomes that has no fault. The sum may be off by what rounding makes of it.
inline const char* multinomial_fault(std::int32_t k, const double* p) {
  double sum = 0;
  for (std::int32_t i = 0; i < k; ++i) {
    if (const char* const fault = bernoulli_fault(p[i]))
      return fault;
    sum += p[i];
  }
  return !(std::fabs(sum - 1) <= 1e-8) ? "p does not add up to 1" : nullptr;
}

inline const char* hypergeometric_fault(std::int32_t l, std::int32_t s, std::int32_t m) {
  return l < 0            ? "l < 0"
         : s < 0 || s > l ? "s is not in [0, l]"
         : m < 0 || m > l ? "m is not in [0, l]"
                          : nullptr;
}

inline const char* negative_binomial_fault(double a, double p) {
  return !(a > 0 && std::isfinite(a)) ? "a <= 0" : geometric_fault(p);
}

inline const char* poisson_v_fault(const double* lambda, std::int64_t count) {
  for (std::int64_t i = 0; i < count; ++i)
    if (const char* const fault = poisson_fault(lambda[i]))
      return fault;
  return nullptr;
}

} // namespace hvl::streams
