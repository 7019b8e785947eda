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

// s_scale = icdf_scale(s); v as for gaussian_icdf.
template <class O>
HVL_MATH_INLINE typename O::value lognormal_icdf(typename O::value v, typename O::scalar m,
                                                 typename O::scalar s_scale, typename O::scalar displacement,
                                                 typename O::scalar scale) {
  return exp_affine<O>(gaussian_icdf<O>(v, m, s_scale), scale, displacement);
}

} // namespace hvl::math
