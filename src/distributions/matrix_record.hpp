#pragma once

#include <vector>

#include <hvl/math/transforms/gaussian_mv.hpp>

#include "framework/device_copies.hpp"

namespace kestro::hvl::rng::detail {

/// Mean and rows of the lower triangle, or its diagonal, for devices. From any thread.
class matrix_record {
 public:
  template <class T>
  matrix_record(const std::vector<T>& a, const std::vector<T>& t, ::hvl::math::matrix_storage storage)
      : numbers_(a.begin(), a.end()) {
    using ::hvl::math::matrix_storage;
    for (std::size_t k = 0; k < a.size(); ++k) {
      const auto row = ::hvl::math::row_of(storage, a.size(), k);
      for (std::size_t j = row.first; j <= k; ++j)
        numbers_.push_back(t[row.start + j]);
    }
  }

  device_numbers on(const sycl::queue& queue) { return copies_.on(queue, numbers_.data(), numbers_.size()); }

 private:
  std::vector<double> numbers_;
  device_copies copies_;
};

} // namespace kestro::hvl::rng::detail
