// Spreads one seed over the words of a state.
#pragma once

#include <cstdint>

namespace hvl::streams {

// SplitMix64: G. L. Steele, D. Lea, C. H. Flood, "Fast splittable pseudorandom number generators", OOPSLA 2014.
class split_mix64 {
 public:
  explicit constexpr split_mix64(std::uint64_t seed) : state_(seed) {}

  constexpr std::uint64_t operator()() {
    state_ += 0x9E3779B97F4A7C15;
    std::uint64_t z = state_;
    z = (z ^ z >> 30) * 0xBF58476D1CE4E5B9;
    z = (z ^ z >> 27) * 0x94D049BB133111EB;
    return z ^ z >> 31;
  }

 private:
  std::uint64_t state_;
};

} // namespace hvl::streams
