// The continuous distributions between the exported functions and the instruction-set units: the methods and what
// each transform is given.
#pragma once

#include <cstdint>

#include "hvl/streams_scaling.hpp"

namespace hvl::streams {

enum class precision : std::uint8_t { single, real64 };

enum class gaussian_method : std::uint8_t { box_muller, box_muller2, icdf };

template <class T>
struct gaussian_parameters {
  coefficients<T> affine;
  T mean;
  T scale; // icdf: icdf_scale of the deviation
};

enum class lognormal_method : std::uint8_t { box_muller2, icdf };

template <class T>
struct lognormal_parameters {
  coefficients<T> affine;
  T m;
  T s; // icdf: icdf_scale of it
  T displacement;
  T scale;
};

enum class inverse_cdf_family : std::uint8_t { exponential, laplace, weibull, rayleigh, gumbel, cauchy };

template <class T>
struct inverse_cdf_parameters {
  coefficients<T> affine; // not of cauchy
  T a;
  T scale;
  double exponent;             // of weibull
  coefficients<double> angles; // of cauchy
};

} // namespace hvl::streams
