// Every method over an engine's words, the extreme ones included: no word gives NaN or infinity, none an integer out of
// range.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace hvl::streams::test {

struct word_report {
  std::uint64_t tried = 0;
  std::vector<std::string> not_finite; // method, engine scale and word; the first few
};

// Every `stride`-th word of each scale, the last one too; of mcg59's 59 bits, as many as of a 32-bit engine. The methods
// in double are tried with each `double_stride`-th of these.
word_report try_words(std::uint64_t stride, std::uint64_t double_stride);

} // namespace hvl::streams::test
