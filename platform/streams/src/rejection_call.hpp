// The call of distributions by transformed rejection.
#pragma once

#include "parameters.hpp"
#include "rejection.hpp"

namespace hvl::streams {

// `parameters`, which become those of the law, outlive the transform.
inline transform rejection_transform(rejection_parameters& parameters, const math::rejection_law& law,
                                     const engine& e, const kernel_set& kernels) {
  parameters = {uniform_coefficients(e.scale, -0.5, 0.5), uniform_coefficients(e.scale, 0.0, 1.0), law,
                math::rejection_curve_of(law)};
  return transform_of(kernels.rejection(e.kind), &parameters, math::transformed_rejection_words,
                      sizeof(std::int32_t));
}

} // namespace hvl::streams
