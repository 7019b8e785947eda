// What the transforms of gamma are given.
#pragma once

#include <hvl/math/transforms/gamma.hpp>

#include "hvl/streams_scaling.hpp"

namespace hvl::streams {

template <class T>
struct gamma_parameters {
  coefficients<T> symmetric; // onto [-1, 1); of float only
  coefficients<T> unit;      // onto [0, 1)
  math::gamma_constants<T> constants;
  bool accurate; // nothing below the displacement
};

} // namespace hvl::streams
