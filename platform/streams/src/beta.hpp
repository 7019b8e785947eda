// What the transform of beta is given.
#pragma once

#include <hvl/math/transforms/beta.hpp>

#include "hvl/streams_scaling.hpp"

namespace hvl::streams {

struct beta_parameters {
  coefficients<double> unit; // onto [0, 1)
  math::beta_constants constants;
};

} // namespace hvl::streams
