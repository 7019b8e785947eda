// What the transform of laws by rejection is given.
#pragma once

#include <hvl/math/transforms/rejection_bounds.hpp>

#include "hvl/streams_scaling.hpp"

namespace hvl::streams {

struct rejection_parameters {
  coefficients<double> centred; // onto [-1/2, 1/2)
  coefficients<double> unit;    // onto [0, 1)
  math::rejection_law law;
  math::rejection_curve curve;
};

} // namespace hvl::streams
