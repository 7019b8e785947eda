// Jumps of r250.
#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "hvl/engines/r250.hpp"

namespace hvl::streams {

// A polynomial over GF(2) of a degree below 250, bit i % 64 of word i / 64 being its coefficient i.
using r250_polynomial = std::array<std::uint64_t, 4>;

// x^n modulo x^250 + x^147 + 1, the characteristic polynomial of the recurrence (the sequence is shifted by x).
r250_polynomial r250_power_of_x(std::span<const std::uint64_t> n) noexcept;

// Replaces 250 consecutive words of the sequence, oldest first, by those `distance` words further.
void r250_jump(std::uint32_t* words, std::span<const std::uint64_t> distance) noexcept;

} // namespace hvl::streams
