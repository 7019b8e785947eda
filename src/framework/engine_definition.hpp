#pragma once

#include <cstdint>
#include <string>

#include <hvl/engines.hpp>
#include <kestro/hvl/exceptions.hpp>
#include <kestro/hvl/rng/engines.hpp>

/// What the engines are: each public class stands for the struct of its name in hvl::engines, which host and kernels share.
namespace kestro::hvl::rng::detail {

template <class Engine>
struct engine_definition;

#define KESTRO_HVL_ENGINE(name)                                                                              \
  template <>                                                                                                \
  struct engine_definition<name> {                                                                           \
    using type = ::hvl::engines::name;                                                                       \
  };
#include <kestro/hvl/rng/detail/engines.def>
#undef KESTRO_HVL_ENGINE

template <class Engine>
using definition_of = typename engine_definition<Engine>::type;

template <class Engine>
inline constexpr const ::hvl::engines::facts& about = definition_of<Engine>::about;

/// Throws `invalid_argument` for a member that the engine does not have.
template <class Engine>
std::int32_t identifier_of(std::uint32_t member) {
  if (member >= static_cast<std::uint32_t>(about<Engine>.members))
    throw invalid_argument("rng", about<Engine>.name,
                           "engine_idx is out of range [0, " + std::to_string(about<Engine>.members) + ")");
  return about<Engine>.identifier + static_cast<std::int32_t>(member);
}

/// An engine that runs a recurrence over its last words; the words of all others follow from a position.
template <class Engine>
concept on_ring = requires {
  typename definition_of<Engine>::recurrence;
};

} // namespace kestro::hvl::rng::detail
