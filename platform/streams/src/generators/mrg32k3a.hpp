// The arithmetic of mrg32k3a, for its scalar and its SIMD form.
#pragma once

#include <cstdint>

#include "hvl/mrg32k3a_tables.h"

namespace hvl::streams {

inline constexpr std::uint32_t mrg32k3a_a12 = 1403580;
inline constexpr std::uint32_t mrg32k3a_a13 = 810728; // subtracted
inline constexpr std::uint32_t mrg32k3a_a21 = 527612;
inline constexpr std::uint32_t mrg32k3a_a23 = 1370589; // subtracted

// The matrices of `steps` steps (below 2^63) of both components, row by row, as residues of least magnitude.
void mrg32k3a_centred_matrices(std::uint64_t steps, double (&x)[9], double (&y)[9]);

} // namespace hvl::streams
