// The words of an engine of the stream library, in one of the ways in which programs read them.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

#include "word_source.hpp"

#include "hvl/engines/facts.hpp"

namespace quality {

enum class view : std::uint8_t {
  words,    // raw words
  reversed, // the lowest bit first
  uniforms, // float numbers on [0, 1), to 24 bits
  doubles,  // double numbers on [0, 1) to 53 bits, the lowest first: of engines whose words have so many
  blocks,   // words of 16 substreams in turn, 2^40 apart, or 2^27 where the period is 2^31 - 2
  members,  // words of 16 members of one seed in turn
  seeds,    // words of 16 neighbouring seeds in turn
};
struct named_view {
  view value;
  const char* name;
};
std::span<const named_view> all_views();

std::span<const hvl::engines::facts> all_engines();
// Throws std::invalid_argument for a name that is none of theirs.
const hvl::engines::facts& engine_named(std::string_view name);
view view_named(std::string_view name);

bool has_view(const hvl::engines::facts& engine, view v);

// Throws std::invalid_argument where the engine has no such view, std::runtime_error where the library fails.
std::unique_ptr<word_source> engine_words(const hvl::engines::facts& engine, view v, std::uint64_t seed);

} // namespace quality
