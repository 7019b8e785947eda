// Vectors of normal numbers with a given covariance T T': a + T z, T lower triangular, z independent standard normal.
#pragma once

#include <cstddef>
#include <cstdint>

#include "../ops.hpp"

namespace hvl::math {

// Rows of a square matrix, of which only the lower triangle is read; the rows of that triangle, one after the other; or the
// diagonal, where all else is 0.
enum class matrix_storage : std::int32_t { full, packed, diagonal };

// Row k has the elements start + first, ..., start + k, of the columns first to k.
struct matrix_row {
  std::size_t start, first;
};

HVL_MATH_INLINE constexpr matrix_row row_of(matrix_storage storage, std::size_t dimension, std::size_t k) {
  switch (storage) {
  case matrix_storage::full:
    return {k * dimension, 0};
  case matrix_storage::packed:
    return {k * (k + 1) / 2, 0};
  case matrix_storage::diagonal:
    break;
  }
  return {0, k};
}

// Elements up to the last that is read.
HVL_MATH_INLINE constexpr std::size_t matrix_elements(matrix_storage storage, std::size_t dimension) {
  const matrix_row last = row_of(storage, dimension, dimension - 1);
  return last.start + dimension;
}

// One vector in place, for a policy of one number: z[0], ..., z[dimension - 1] become the values. A sum takes its columns in
// ascending order, each product fused. Numbers of `mean` and `matrix` are converted to the policy's.
template <class O, class Number, class Vector>
HVL_MATH_INLINE void gaussian_mv_in_place(matrix_storage storage, std::size_t dimension, const Number* mean,
                                          const Number* matrix, const Vector& z) {
  using T = typename O::scalar;
  for (std::size_t k = dimension; k-- > 0;) { // a row reads no later element
    const matrix_row row = row_of(storage, dimension, k);
    T sum = static_cast<T>(mean[k]);
    for (std::size_t j = row.first; j <= k; ++j)
      sum = O::fma(static_cast<T>(matrix[row.start + j]), z[j], sum);
    z[k] = sum;
  }
}

} // namespace hvl::math
