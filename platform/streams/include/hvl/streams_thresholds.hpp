// Thresholds of a discrete law with what finds a value among them fast: for the C functions and for callers that keep them
// from call to call.
#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>
#include <vector>

#include <hvl/math/laws.hpp>

#include "hvl/streams_detail.h"

namespace hvl::streams {

// So few thresholds are compared one by one.
inline constexpr std::uint32_t few_thresholds = 8;

inline std::uint32_t low_of_threshold(double threshold) {
  const auto units = static_cast<std::uint64_t>(threshold * 0x1p32);
  constexpr std::uint64_t greatest = 0xFFFFFFFFu;
  constexpr std::uint64_t margin = VQS_THRESHOLD_MARGIN;
  return static_cast<std::uint32_t>(units < margin ? 0 : (units < greatest ? units : greatest) - margin);
}

class law_thresholds {
 public:
  // Computed in the default floating-point environment. May throw std::bad_alloc.
  template <class Law>
  explicit law_thresholds(const Law& law) : values_(math::thresholds_of(law, upper_)) {
    count_ = static_cast<std::uint32_t>(upper_.size());
    upper_.push_back(std::numeric_limits<double>::infinity());
  }

  // Pays from some hundred values on.
  static constexpr std::int64_t least_values_of_guide = 512;
  bool has_guide() const { return !low_.empty(); }
  void add_guide() {
    low_.reserve(count_ + 2);
    for (std::uint32_t i = 0; i < count_; ++i)
      low_.push_back(low_of_threshold(upper_[i]));
    low_.insert(low_.end(), 2, 0xFFFFFFFFu);
    if (count_ <= few_thresholds)
      return;
    cell_bits_ = 10;
    while (cell_bits_ < 14 && (std::uint32_t{1} << cell_bits_) < 8 * count_)
      ++cell_bits_;
    cells_.resize(std::size_t{1} << cell_bits_);
    const std::uint32_t shift = 32 - cell_bits_;
    std::size_t first = 0;
    for (std::uint32_t passed = 0; passed <= count_; ++passed) {
      // the cells that begin where so many are surely passed, and where the one after the next begins to matter
      std::size_t end = cells_.size(), several = end;
      if (passed < count_)
        end = std::min(end, static_cast<std::size_t>(
                                (low_[passed] + 2ull * VQS_THRESHOLD_MARGIN + (1ull << shift) - 1) >> shift));
      if (passed + 1 < count_)
        several = std::min(end, std::size_t{low_[passed + 1] >> shift});
      several = std::max(std::min(several, end), first);
      std::fill(cells_.begin() + static_cast<std::ptrdiff_t>(first),
                cells_.begin() + static_cast<std::ptrdiff_t>(several), 2 * passed);
      std::fill(cells_.begin() + static_cast<std::ptrdiff_t>(several),
                cells_.begin() + static_cast<std::ptrdiff_t>(end), 2 * passed + 1);
      first = end;
    }
  }

  // Refers to this object.
  vqs_thresholds view() const {
    return {upper_.data(),
            has_guide() ? low_.data() : nullptr,
            cells_.empty() ? nullptr : cells_.data(),
            count_,
            cell_bits_,
            values_.origin,
            values_.step};
  }

 private:
  std::vector<double> upper_;
  math::law_values values_;
  std::uint32_t count_;
  std::vector<std::uint32_t> low_;
  std::vector<std::uint32_t> cells_;
  std::uint32_t cell_bits_ = 0;
};

} // namespace hvl::streams
