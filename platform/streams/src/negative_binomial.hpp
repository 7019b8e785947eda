// What the transform of negative_binomial without a table is given.
#pragma once

#include <hvl/math/transforms/gamma.hpp>

#include "hvl/streams_scaling.hpp"

namespace hvl::streams {

struct negative_binomial_parameters {
  coefficients<double> symmetric; // onto [-1, 1)
  coefficients<double> unit;      // onto [0, 1)
  math::gamma_constants<double> means;
};

} // namespace hvl::streams
