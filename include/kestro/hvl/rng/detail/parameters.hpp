#pragma once

#include <type_traits>

#include "../../detail/export.hpp"

namespace kestro::hvl::rng::detail {

/// Throws `invalid_argument("rng", distribution, info)`.
[[noreturn]] KESTRO_HVL_API void refuse_parameter(const char* distribution, const char* info);

inline void require(bool holds, const char* distribution, const char* info) {
  if (!holds)
    refuse_parameter(distribution, info);
}

/// False for infinities and NaN.
template <class T>
constexpr bool is_finite(T x) {
  return x - x == T(0);
}

/// False for NaN, too.
template <class T>
constexpr bool is_positive(T x) {
  return x > T(0) && is_finite(x);
}

template <class T, class... Allowed>
inline constexpr bool is_one_of = (std::is_same_v<T, Allowed> || ...);

} // namespace kestro::hvl::rng::detail
