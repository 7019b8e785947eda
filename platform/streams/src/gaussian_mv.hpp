// What the vectors of gaussian_mv are made with.
#pragma once

#include <cstddef>

#include <hvl/math/transforms/gaussian_mv.hpp>

namespace hvl::streams {

template <class T>
struct gaussian_mv_parameters {
  math::matrix_storage storage;
  std::size_t dimension;
  const T* mean;
  const T* matrix;
};

} // namespace hvl::streams
