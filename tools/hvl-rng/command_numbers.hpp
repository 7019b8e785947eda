// Whole numbers of the command line. What might be meant otherwise, or is a slip, is refused: signs, blanks,
// leading zeros, nothing at all, 2^64 and more.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace hvl_rng {

// 1000, 1e6, 500k, 20M: a power of ten or a suffix k, M, G, T may follow. Throws `failure` naming the option.
std::uint64_t read_count(const std::string& option, const std::string& text);

// One number, or several separated by commas; 0x begins a hexadecimal one. Throws `failure` naming --seed.
std::vector<std::uint64_t> read_seed(const std::string& text);

} // namespace hvl_rng
