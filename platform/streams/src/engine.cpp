#include "engine.hpp"

namespace hvl::streams {
namespace {

constexpr const engine* engines_listed[] = {
#define HVL_ENGINE(name) &name##_engine,
#include "hvl/engines.def"
#undef HVL_ENGINE
};

} // namespace

std::span<const engine* const> all_engines() noexcept {
  return engines_listed;
}

const engine* find_engine(std::int32_t id) noexcept {
  for (const engine* e : engines_listed)
    if (e->has_member(id))
      return e;
  return nullptr;
}

} // namespace hvl::streams
