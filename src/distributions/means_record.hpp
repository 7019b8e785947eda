#pragma once

#include <memory>
#include <utility>
#include <vector>

#include <kestro/hvl/rng/detail/record.hpp>

#include "framework/device_copies.hpp"

namespace kestro::hvl::rng::detail {

/// The means of poisson_v, on the devices that have asked for them.
class means_record {
 public:
  explicit means_record(std::shared_ptr<const std::vector<double>> means) : means_(std::move(means)) {}

  device_numbers on(const sycl::queue& queue) { return copies_.on(queue, means_->data(), means_->size()); }

 private:
  std::shared_ptr<const std::vector<double>> means_;
  device_copies copies_;
};

} // namespace kestro::hvl::rng::detail
