#pragma once

#include <cstdint>

namespace hvl::streams {

// The matrices of `steps` steps (below 2^63) of both components of mrg32k3a, row by row, as residues of least magnitude.
void mrg32k3a_centred_matrices(std::uint64_t steps, double (&x)[9], double (&y)[9]);

} // namespace hvl::streams
