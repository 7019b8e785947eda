// What the transform of geometric is given.
#pragma once

#include "hvl/streams_scaling.hpp"

namespace hvl::streams {

struct geometric_parameters {
  coefficients<double> unit; // onto [0, 1)
  double scale;              // math::geometric_scale
};

} // namespace hvl::streams
