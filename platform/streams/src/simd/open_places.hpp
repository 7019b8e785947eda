// The values of a block that first attempts left open, by place, and what decides them a vector of doubles at a time.
#pragma once

#include "simd/vector_ops.hpp"

#ifndef HVL_STREAMS_ISA_IS_SCALAR

namespace hvl::streams::HVL_STREAMS_ISA {
namespace {

// Most is a multiple of 64.
template <std::size_t Most>
class open_places {
 public:
  // Bit i stands for place first + i; a vector's places lie in one 64.
  HWY_INLINE void accept(std::size_t first, std::uint64_t bits) {
    accepted_[first / 64] |= bits << first % 64;
  }

  // Opens those of `count` places from `first` on, a multiple of 64, that nothing accepted.
  HWY_INLINE void open(std::size_t first, std::size_t count) {
    for (std::size_t i = 0; i < count; i += 64) {
      const std::size_t place = first + i;
      std::uint64_t left = ~accepted_[place / 64];
      if (count - i < 64)
        left &= (std::uint64_t{1} << (count - i)) - 1;
      for (; left != 0; left &= left - 1)
        place_[count_++] =
            static_cast<std::uint32_t>(place) + static_cast<std::uint32_t>(__builtin_ctzll(left));
    }
  }

  bool empty() const { return count_ == 0; }
  const std::uint32_t* begin() const { return place_; }
  const std::uint32_t* end() const { return place_ + count_; }

  // Closes those that are accepted. A vector of doubles at a time: gather(lane, place) for each of them, then the bits of
  // accepted(places, lanes).
  template <class Gather, class Accepted>
  HWY_INLINE void decide(const Gather& gather, const Accepted& accepted) {
    constexpr std::size_t width = vector_values<double>;
    std::size_t kept = 0;
    for (std::size_t first = 0; first < count_; first += width) {
      const std::size_t lanes = HWY_MIN(width, count_ - first);
      for (std::size_t k = 0; k < lanes; ++k)
        gather(k, place_[first + k]);
      std::uint64_t bits = accepted(place_ + first, lanes);
      for (std::size_t k = 0; k < lanes; ++k, bits >>= 1) {
        place_[kept] = place_[first + k];
        kept += ~bits & 1;
      }
    }
    count_ = kept;
  }

 private:
  std::uint64_t accepted_[Most / 64] = {};
  std::uint32_t place_[Most];
  std::size_t count_ = 0;
};

} // namespace
} // namespace hvl::streams::HVL_STREAMS_ISA

#endif
