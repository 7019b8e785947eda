#pragma once

#include <vector>

#include <hvl/float_environment.hpp>
#include <hvl/math/transforms/multinomial.hpp>

#include "framework/device_copies.hpp"

namespace kestro::hvl::rng::detail {

/// What multinomial's counts are made with, for devices. From any thread.
class outcome_record {
 public:
  explicit outcome_record(const std::vector<double>& p) {
    ::hvl::in_default_float_environment(
        [&] { ::hvl::math::make_multinomial_table(p.data(), p.size(), table_); });
  }

  device_numbers on(const sycl::queue& queue) { return copies_.on(queue, table_.data(), table_.size()); }

 private:
  std::vector<double> table_;
  device_copies copies_;
};

} // namespace kestro::hvl::rng::detail
