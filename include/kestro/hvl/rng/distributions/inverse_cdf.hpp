#pragma once

#include "../detail/parameters.hpp"

/// Continuous distributions made by the inverse of their distribution function from uniforms u on [0, 1). The
/// logarithm of u = 0 is taken as that of the smallest positive number of the type. `icdf_accurate` raises a
/// result that rounding left below the displacement to the displacement.
///
/// Tails end where the uniforms do, which have 32 bits (mcg31m1 31, mcg59 59) and in `float` 24 of them: with
/// philox4x32x10 and mt19937 -ln u reaches 17.33 in `float` and 22.18 in `double`, and for u = 0 (65 and 1 of 2^32
/// words) it is 103.28 and 744.44. The other end, u = 1, is reached in `float` only (191 of 2^32 words).
///
/// The last product and the sum with the displacement are one fused step.

namespace kestro::hvl::rng {

namespace exponential_method {
struct icdf {};
struct icdf_accurate {};
} // namespace exponential_method

/// a - beta ln u: displacement a, scale beta. One uniform per value.
template <class T = float, class Method = exponential_method::icdf>
class exponential {
  static_assert(detail::is_one_of<T, float, double>, "exponential yields float or double");
  static_assert(detail::is_one_of<Method, exponential_method::icdf, exponential_method::icdf_accurate>);

 public:
  using result_type = T;
  using method_type = Method;

  exponential() : exponential(T(0), T(1)) {}

  /// Throws `invalid_argument` unless a is finite and beta is positive and finite.
  exponential(T a, T beta) : a_(a), beta_(beta) { detail::check_displaced("exponential", a, beta); }

  T a() const { return a_; }
  T beta() const { return beta_; }

 private:
  T a_, beta_;
};

namespace laplace_method {
struct icdf {};
} // namespace laplace_method

/// Mean a, scale b. Two uniforms per value: magnitude -b ln u1, above the mean where u2 <= 1/2.
template <class T = float, class Method = laplace_method::icdf>
class laplace {
  static_assert(detail::is_one_of<T, float, double>, "laplace yields float or double");
  static_assert(detail::is_one_of<Method, laplace_method::icdf>);

 public:
  using result_type = T;
  using method_type = Method;

  laplace() : laplace(T(0), T(1)) {}

  /// Throws `invalid_argument` unless a is finite and b is positive and finite.
  laplace(T a, T b) : a_(a), b_(b) { detail::check_centred("laplace", a, b); }

  T a() const { return a_; }
  T b() const { return b_; }

 private:
  T a_, b_;
};

namespace weibull_method {
struct icdf {};
struct icdf_accurate {};
} // namespace weibull_method

/// a + beta (-ln u)^(1/alpha): shape alpha, displacement a, scale beta. One uniform per value. The power is formed in
/// `double` for both result types, 1 / alpha is kept finite.
template <class T = float, class Method = weibull_method::icdf>
class weibull {
  static_assert(detail::is_one_of<T, float, double>, "weibull yields float or double");
  static_assert(detail::is_one_of<Method, weibull_method::icdf, weibull_method::icdf_accurate>);

 public:
  using result_type = T;
  using method_type = Method;

  weibull() : weibull(T(1), T(0), T(1)) {}

  /// Throws `invalid_argument` unless a is finite and alpha and beta are positive and finite.
  weibull(T alpha, T a, T beta) : alpha_(alpha), a_(a), beta_(beta) { detail::check_weibull(alpha, a, beta); }

  T alpha() const { return alpha_; }
  T a() const { return a_; }
  T beta() const { return beta_; }

 private:
  T alpha_, a_, beta_;
};

namespace rayleigh_method {
struct icdf {};
struct icdf_accurate {};
} // namespace rayleigh_method

/// a + beta sqrt(-ln u): displacement a, scale beta; note that there is no factor 2 under the root. One
/// uniform per value.
template <class T = float, class Method = rayleigh_method::icdf>
class rayleigh {
  static_assert(detail::is_one_of<T, float, double>, "rayleigh yields float or double");
  static_assert(detail::is_one_of<Method, rayleigh_method::icdf, rayleigh_method::icdf_accurate>);

 public:
  using result_type = T;
  using method_type = Method;

  rayleigh() : rayleigh(T(0), T(1)) {}

  /// Throws `invalid_argument` unless a is finite and beta is positive and finite.
  rayleigh(T a, T beta) : a_(a), beta_(beta) { detail::check_displaced("rayleigh", a, beta); }

  T a() const { return a_; }
  T beta() const { return beta_; }

 private:
  T a_, beta_;
};

namespace gumbel_method {
struct icdf {};
} // namespace gumbel_method

/// a + beta ln(-ln u): displacement a, scale beta. One uniform per value.
template <class T = float, class Method = gumbel_method::icdf>
class gumbel {
  static_assert(detail::is_one_of<T, float, double>, "gumbel yields float or double");
  static_assert(detail::is_one_of<Method, gumbel_method::icdf>);

 public:
  using result_type = T;
  using method_type = Method;

  gumbel() : gumbel(T(0), T(1)) {}

  /// Throws `invalid_argument` unless a is finite and beta is positive and finite.
  gumbel(T a, T beta) : a_(a), beta_(beta) { detail::check_displaced("gumbel", a, beta); }

  T a() const { return a_; }
  T beta() const { return beta_; }

 private:
  T a_, beta_;
};

namespace cauchy_method {
struct icdf {};
} // namespace cauchy_method

/// a + b tan v for an angle v uniform on (-pi/2, pi/2): displacement a, scale b. One uniform per value. Computed in
/// `double` for both result types.
template <class T = float, class Method = cauchy_method::icdf>
class cauchy {
  static_assert(detail::is_one_of<T, float, double>, "cauchy yields float or double");
  static_assert(detail::is_one_of<Method, cauchy_method::icdf>);

 public:
  using result_type = T;
  using method_type = Method;

  cauchy() : cauchy(T(0), T(1)) {}

  /// Throws `invalid_argument` unless a is finite and b is positive and finite.
  cauchy(T a, T b) : a_(a), b_(b) { detail::check_centred("cauchy", a, b); }

  T a() const { return a_; }
  T b() const { return b_; }

 private:
  T a_, b_;
};

} // namespace kestro::hvl::rng
