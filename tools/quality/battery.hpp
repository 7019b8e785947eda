// The tests that every engine goes through, at one size.
#pragma once

#include <string>
#include <vector>

#include "word_source.hpp"

namespace quality {

struct outcome {
  std::string test;
  double p;
};

// Most tests read about 2^size words, 16 <= size <= 32 and even. Throws std::invalid_argument for another size.
std::vector<outcome> run_battery(word_source& source, unsigned size);

} // namespace quality
