// Blocks and jumps of sfmt19937.
#pragma once

#include <cstdint>
#include <span>

#include "hvl/engines/sfmt19937.hpp"

namespace hvl::streams {

// The block of 624 words that follows, in place.
void sfmt19937_next_block(std::uint32_t* block) noexcept;

// Replaces a block by the one `distance` units of four words further. May throw std::bad_alloc, and then has changed
// nothing.
void sfmt19937_jump(std::uint32_t* block, std::span<const std::uint64_t> distance);

} // namespace hvl::streams
