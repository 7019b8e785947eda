// Jumps of mt19937.
#pragma once

#include <cstdint>
#include <span>

#include "hvl/engines/mt19937.hpp"

namespace hvl::streams {

// Replaces 624 consecutive words of the sequence by those `distance` words further, whatever the distance's
// size. May throw std::bad_alloc, and then has changed nothing.
void mt19937_jump(std::uint32_t* words, std::span<const std::uint64_t> distance);

} // namespace hvl::streams
