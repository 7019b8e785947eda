// Jumps of mt2203.
#pragma once

#include <cstdint>
#include <span>

#include "hvl/engines/mt2203.hpp"

namespace hvl::streams {

// Replaces 69 consecutive words of the sequence by those `distance` words further, which is not 0. May throw
// std::bad_alloc, and then has changed nothing.
void mt2203_jump(const engines::mt2203::recurrence& recurrence, std::uint32_t* words,
                 std::span<const std::uint64_t> distance);

} // namespace hvl::streams
