// What the transform of poisson_v is given.
#pragma once

#include "hvl/streams_scaling.hpp"

namespace hvl::streams {

// Of one thread's call: means are taken in order.
struct poisson_v_parameters {
  coefficients<double> unit; // onto [0, 1)
  const double** next_mean;
};

} // namespace hvl::streams
