#pragma once

#include <memory>

namespace kestro::hvl::rng::detail {

/// What the library computes of a distribution's parameters when it first needs it; all copies of the distribution share it.
class threshold_record;
class matrix_record;
class means_record;
class outcome_record;

struct distribution_access {
  template <class Distribution>
  static const auto& record(const Distribution& distribution) {
    return distribution.record_;
  }
};

} // namespace kestro::hvl::rng::detail
