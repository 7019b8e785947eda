#pragma once

#include <algorithm>
#include <cstddef>

#include "framework/distribution_impl.hpp"

namespace kestro::hvl::rng::detail::openmp {

template <std::size_t Size>
struct literal {
  constexpr literal(const char (&text)[Size]) { std::copy_n(text, Size, value); }
  char value[Size];
};

/// Stands in the table for a distribution that the library does not have; calls for it fail in the driver.
template <literal Name, class T>
class missing {
 public:
  using result_type = T;
  static constexpr const char* name = Name.value;
  template <class... Parameters>
  explicit missing(const Parameters&...) {}
};

/// Whether the library can generate the distribution.
template <class Distribution>
concept provided = requires {
  distribution_traits<Distribution>::name;
};

} // namespace kestro::hvl::rng::detail::openmp
