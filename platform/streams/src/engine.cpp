#include "engine.hpp"

namespace hvl::streams {
namespace {

constexpr const engine* engines[] = {
#define HVL_STREAMS_ENGINE(name, id) &name##_engine,
#include "engines.def"
#undef HVL_STREAMS_ENGINE
};

} // namespace

std::span<const engine* const> all_engines() noexcept {
  return engines;
}

const engine* find_engine(std::int32_t id) noexcept {
  switch (id) {
#define HVL_STREAMS_ENGINE(name, identifier)                                                                 \
  case identifier:                                                                                           \
    return &name##_engine;
#include "engines.def"
#undef HVL_STREAMS_ENGINE
  default:
    return nullptr;
  }
}

std::size_t index_of(const engine& e) noexcept {
  for (std::size_t i = 0; i < engine_count; ++i)
    if (engines[i]->id == e.id)
      return i;
  return engine_count;
}

} // namespace hvl::streams
