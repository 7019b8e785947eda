// Every engine of the stream library.
#pragma once

#include <cstdint>

#include "hvl/engines.hpp"

namespace bench {

inline constexpr hvl::engines::facts engines[] = {
#define HVL_ENGINE(name) hvl::engines::name::about,
#include "hvl/engines.def"
#undef HVL_ENGINE
};

// Of a quasi-random engine it is the number of dimensions.
constexpr std::uint64_t sample_seed(const hvl::engines::facts& engine) {
  return engine.is_quasi_random ? 10 : 20211113;
}

} // namespace bench
