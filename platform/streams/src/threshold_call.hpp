// The call of distributions that have thresholds.
#pragma once

#include "hvl/streams_thresholds.hpp"
#include "parameters.hpp"
#include "thresholds.hpp"

namespace hvl::streams {

// `parameters` becomes those of `table`, which outlives the transform.
inline transform threshold_transform(threshold_parameters& parameters, const vqs_thresholds& table,
                                     const engine& e, const kernel_set& kernels) {
  parameters = {uniform_coefficients(e.scale, 0.0, 1.0), table, e.scale == word_scale::mcg31m1 ? 2u : 1u};
  return transform_of(kernels.thresholds(e.kind), &parameters, math::thresholds_words, sizeof(std::int32_t));
}

} // namespace hvl::streams
