#pragma once

#include <type_traits>

namespace kestro::hvl::rng::detail {

/// The stream library's function for the result type.
template <class T, class Single, class Double>
constexpr auto host_function(Single single_precision, Double double_precision) {
  static_assert(std::is_same_v<T, float> || std::is_same_v<T, double>);
  if constexpr (std::is_same_v<T, float>)
    return single_precision;
  else
    return double_precision;
}

} // namespace kestro::hvl::rng::detail
