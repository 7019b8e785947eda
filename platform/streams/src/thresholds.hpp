// What the transform of thresholds is given.
#pragma once

#include "hvl/streams_detail.h"
#include "hvl/streams_scaling.hpp"

namespace hvl::streams {

struct threshold_parameters {
  coefficients<double> unit; // onto [0, 1)
  vqs_thresholds table;
  std::uint32_t first_word_unit; // in units of 2^-32: of mcg31m1 2, else 1
};

} // namespace hvl::streams
