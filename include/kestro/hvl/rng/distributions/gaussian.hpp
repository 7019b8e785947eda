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
///
/// Tails end where the uniforms do, which have 32 bits (mcg31m1 31, mcg59 59) and in `float` 24 of them. With
/// philox4x32x10 and mt19937, in standard deviations:
///
///   method                        float    double
///   box_muller, box_muller2       5.89     6.66     and, for a uniform of 0, up to 14.37 and 38.59
///   icdf                          5.42     6.23     and, for the least uniform of double, -8.29
///
/// A uniform is 0 for 65 of 2^32 words in `float`, for one in `double`; then its logarithm is taken as that of the
/// smallest positive number of the type. Box-Muller's angle is counted in turns, where it is reduced exactly, and not
/// rounded to a multiple of 2 pi first; mean + stddev z is one fused step; stddev sqrt(2) is kept finite.
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
  gaussian(T mean, T stddev) : mean_(mean), stddev_(stddev) { detail::check_gaussian(mean, stddev); }

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

/// scale * exp(z) + displ for a normal z of mean m and standard deviation s. Uniforms and tails as the gaussian method;
/// the product and the sum behind exp(z) are one fused step.
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
    detail::check_lognormal(m, s, displ, scale);
  }

  T m() const { return m_; }
  T s() const { return s_; }
  T displ() const { return displ_; }
  T scale() const { return scale_; }

 private:
  T m_, s_, displ_, scale_;
};

} // namespace kestro::hvl::rng
