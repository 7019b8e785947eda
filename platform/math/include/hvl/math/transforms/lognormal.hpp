// The log-normal distribution: scale * exp(z) + displacement, z normal with mean m and deviation s.
#pragma once

#include "../exp.hpp"
#include "gaussian.hpp"

namespace hvl::math {

template <class O>
HVL_MATH_INLINE void lognormal_box_muller2(typename O::value u1, typename O::value u2, typename O::scalar m,
                                           typename O::scalar s, typename O::scalar displacement,
                                           typename O::scalar scale, typename O::value& first,
                                           typename O::value& second) {
  gaussian_box_muller2<O>(u1, u2, m, s, first, second);
  first = exp_affine<O>(first, scale, displacement);
  second = exp_affine<O>(second, scale, displacement);
}

} // namespace hvl::math
