// The library's engines and distributions as the pages name them.
#pragma once

#include "listed_types.hpp"

#include <hvl/engines.hpp>
#include <kestro/hvl/rng.hpp>

#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace page_facts {

namespace engines = ::hvl::engines;
namespace rng = kestro::hvl::rng;
using hvl_rng::distribution_list;
using hvl_rng::engine_list;
using hvl_rng::type_list;

// clang-format off
#define KESTRO_HVL_DISTRIBUTION(family, ...) #__VA_ARGS__,
inline constexpr std::string_view spellings[] = {
#include <kestro/hvl/rng/detail/distributions.def>
};
#undef KESTRO_HVL_DISTRIBUTION
// clang-format on

template <class Distribution, class... Listed>
std::string_view spelling_among(type_list<Listed...>) {
  const bool is_it[] = {std::is_same_v<Distribution, Listed>...};
  return spellings[std::find(std::begin(is_it), std::end(is_it), true) - std::begin(is_it)];
}

template <class Distribution>
std::string_view spelling_of() {
  return spelling_among<Distribution>(distribution_list());
}

// The stream library's struct of a class.
template <class Engine>
struct definition_of;
#define KESTRO_HVL_ENGINE(name)                                                                              \
  template <>                                                                                                \
  struct definition_of<rng::name> {                                                                          \
    using type = engines::name;                                                                              \
  };
#include <kestro/hvl/rng/detail/engines.def>
#undef KESTRO_HVL_ENGINE

inline std::string family_of(std::string_view spelling) {
  return std::string(spelling.substr(0, spelling.find('<')));
}

template <class Engine>
Engine made(const sycl::queue& queue) {
  return Engine(queue, std::vector<std::uint32_t>{2}); // of quasi-random ones the dimensions
}

template <class Distribution>
int values_in_one(const Distribution& distribution) {
  if constexpr (requires { distribution.dimen(); })
    return distribution.dimen();
  else
    return 1;
}

// Times on this machine, as Markdown.
void print_costs();

} // namespace page_facts
