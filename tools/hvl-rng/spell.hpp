// What titles say of numbers.
#pragma once

#include "verbs.hpp"

#include <string>

namespace hvl_rng {

// The distribution's name and all its parameters.
std::string spell_distribution(const source_options& options, const distribution_entry& distribution);

// "numbers (type, method) of engine, seed".
std::string spell_numbers(const source_options& options, const distribution_entry& distribution);

} // namespace hvl_rng
