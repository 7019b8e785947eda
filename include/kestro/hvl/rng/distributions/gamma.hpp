#pragma once

#include "../detail/parameters.hpp"

namespace kestro::hvl::rng {

namespace gamma_method {

/// By rejection (G. Marsaglia and W. W. Tsang, "A simple method for generating gamma variables", 2000). A shape below 1
/// takes a value of the shape alpha + 1 times the power 1/alpha of a uniform.
struct marsaglia {};

/// As `marsaglia`, and a value that rounding left below the displacement is raised to it.
struct marsaglia_accurate {};

} // namespace gamma_method

/// Shape alpha, displacement a, scale beta: mean a + alpha beta, variance alpha beta^2.
///
/// Two words a value, three at shapes below 1, whatever is rejected: a rejected first attempt is followed by others made of
/// a hash of the value's own words. `double` makes values in pairs, so an odd n wastes the words of one value. Far tails
/// end where the normal number behind a value does, which is made of 32 bits.
///
/// Some C libraries have a function `::gamma`: behind a using-directive write `rng::gamma`, or a using-declaration.
template <class T = float, class Method = gamma_method::marsaglia>
class gamma {
  static_assert(detail::is_one_of<T, float, double>, "gamma yields float or double");
  static_assert(detail::is_one_of<Method, gamma_method::marsaglia, gamma_method::marsaglia_accurate>);

 public:
  using result_type = T;
  using method_type = Method;

  gamma() : gamma(T(1), T(0), T(1)) {}

  /// Throws `invalid_argument` ("alpha <= 0", "a is not finite", "beta <= 0") unless alpha and beta are positive and
  /// finite and a is finite.
  gamma(T alpha, T a, T beta) : alpha_(alpha), a_(a), beta_(beta) { detail::check_gamma(alpha, a, beta); }

  T alpha() const { return alpha_; }
  T a() const { return a_; }
  T beta() const { return beta_; }

 private:
  T alpha_, a_, beta_;
};

} // namespace kestro::hvl::rng
