// The arithmetic of mrg32k3a, for its scalar and its SIMD form.
#pragma once

#include <array>
#include <cstdint>

#include "hvl/mrg32k3a_tables.h"

namespace hvl::streams {

inline constexpr std::uint32_t mrg32k3a_a12 = 1403580;
inline constexpr std::uint32_t mrg32k3a_a13 = 810728; // subtracted
inline constexpr std::uint32_t mrg32k3a_a21 = 527612;
inline constexpr std::uint32_t mrg32k3a_a23 = 1370589; // subtracted

// The three last values of a component, oldest first.
using mrg32k3a_component = std::array<std::uint32_t, 3>;

// Row by row.
using mrg32k3a_matrix = std::array<std::uint32_t, 9>;

// A component `count` steps further; `jump` is its jump table.
mrg32k3a_component mrg32k3a_jump(const std::uint32_t (&jump)[147][9], std::uint32_t modulus,
                                 mrg32k3a_component values, std::uint64_t count);

} // namespace hvl::streams
