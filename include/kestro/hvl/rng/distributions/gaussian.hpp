#pragma once

#include "../detail/parameters.hpp"

namespace kestro::hvl::rng {

namespace gaussian_method {

/// Sine branch of Box and Muller's transform; two uniforms per value.
struct box_muller {};

/// Both branches: two uniforms per pair of values, sine first. An odd count wastes one uniform.
struct box_muller2 {};

/// Inverse distribution function; one uniform per value.
struct icdf {};

} // namespace gaussian_method

/// Normal distribution. (G. E. P. Box, M. E. Muller, "A note on the generation of random normal deviates",
/// 1958.)
template <class T = float, class Method = gaussian_method::box_muller2>
class gaussian {
  static_assert(detail::is_one_of<T, float, double>, "gaussian yields float or double");
  static_assert(detail::is_one_of<Method, gaussian_method::box_muller, gaussian_method::box_muller2,
                                  gaussian_method::icdf>);

 public:
  using result_type = T;
  using method_type = Method;

  gaussian() : gaussian(T(0), T(1)) {}

  /// Throws `invalid_argument` unless mean is finite and stddev positive and finite.
  gaussian(T mean, T stddev) : mean_(mean), stddev_(stddev) {
    detail::require(detail::is_finite(mean), "gaussian", "mean is not finite");
    detail::require(detail::is_positive(stddev), "gaussian", "stddev <= 0");
  }

  T mean() const { return mean_; }
  T stddev() const { return stddev_; }

 private:
  T mean_, stddev_;
};

namespace lognormal_method {

/// As the gaussian methods of the same name.
struct box_muller2 {};
struct icdf {};

/// The same, then raised to the displacement where rounding fell below it.
struct box_muller2_accurate {};
struct icdf_accurate {};

} // namespace lognormal_method

/// scale * exp(z) + displ for a normal z of mean m and standard deviation s. Uniforms as the gaussian method.
template <class T = float, class Method = lognormal_method::box_muller2>
class lognormal {
  static_assert(detail::is_one_of<T, float, double>, "lognormal yields float or double");
  static_assert(detail::is_one_of<Method, lognormal_method::box_muller2, lognormal_method::icdf,
                                  lognormal_method::box_muller2_accurate, lognormal_method::icdf_accurate>);

 public:
  using result_type = T;
  using method_type = Method;

  lognormal() : lognormal(T(0), T(1), T(0), T(1)) {}

  /// Throws `invalid_argument` unless m and displ are finite, s and scale positive and finite.
  lognormal(T m, T s, T displ = T(0), T scale = T(1)) : m_(m), s_(s), displ_(displ), scale_(scale) {
    detail::require(detail::is_finite(m), "lognormal", "m is not finite");
    detail::require(detail::is_positive(s), "lognormal", "s <= 0");
    detail::require(detail::is_finite(displ), "lognormal", "displ is not finite");
    detail::require(detail::is_positive(scale), "lognormal", "scale <= 0");
  }

  T m() const { return m_; }
  T s() const { return s_; }
  T displ() const { return displ_; }
  T scale() const { return scale_; }

 private:
  T m_, s_, displ_, scale_;
};

} // namespace kestro::hvl::rng
