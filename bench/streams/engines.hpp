// Every engine of the stream library, by name and identifier.
#pragma once

#include <cstdint>

#include "hvl/engines.hpp"

namespace bench {

struct engine {
  const char* name;
  std::int32_t id;
};

inline constexpr engine engines[] = {
#define HVL_ENGINE(name) {#name, hvl::engines::name::about.identifier},
#include "hvl/engines.def"
#undef HVL_ENGINE
};

} // namespace bench
