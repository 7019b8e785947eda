#pragma once

#include "../detail/parameters.hpp"

namespace kestro::hvl::rng {

namespace beta_method {

/// By rejection: R. C. H. Cheng, "Generating beta variates with nonintegral shape parameters", 1978; where one shape is at
/// most 1/2 and the other at most 1, M. D. Joehnk, "Erzeugung von betaverteilten und gammaverteilten Zufallszahlen", 1964.
struct cheng_johnk {};

} // namespace beta_method

/// a + beta X, X of the shapes p and q: mean a + beta p / (p + q), variance beta^2 p q / ((p + q)^2 (p + q + 1)). The parameter
/// beta is called scale here, as the class has its name.
///
/// Two words a value, whatever is rejected: a rejected first attempt is followed by others made of a hash of the value's own
/// words. Computed in double for both result types; never outside [a, a + beta].
template <class T = float, class Method = beta_method::cheng_johnk>
class beta {
  static_assert(detail::is_one_of<T, float, double>, "beta yields float or double");
  static_assert(detail::is_one_of<Method, beta_method::cheng_johnk>);

 public:
  using result_type = T;
  using method_type = Method;

  beta() : beta(T(2), T(3), T(0), T(1)) {}

  /// Throws `invalid_argument` ("p <= 0", "q <= 0", "a is not finite", "beta <= 0", "a + beta is not finite") unless p, q
  /// and the scale are positive and finite, and both ends of the interval are finite.
  beta(T p, T q, T a, T scale) : p_(p), q_(q), a_(a), scale_(scale) { detail::check_beta(p, q, a, scale); }

  T p() const { return p_; }
  T q() const { return q_; }
  T a() const { return a_; }
  T scale() const { return scale_; }

 private:
  T p_, q_, a_, scale_;
};

} // namespace kestro::hvl::rng
