// The arithmetic of hvl/engines/twister.hpp in vectors.
#pragma once

#include "simd/value_sink.hpp"

namespace hvl::streams::HVL_STREAMS_ISA {
namespace {

template <class Recurrence>
class twister_vectors {
  static constexpr hn::ScalableTag<std::uint32_t> d{};

 public:
  using vec = hn::Vec<decltype(d)>;

  HWY_INLINE explicit twister_vectors(const Recurrence& r)
      : upper_(hn::Set(d, r.upper)), matrix_(hn::Set(d, r.matrix)), b_(hn::Set(d, r.tempering_b)),
        c_(hn::Set(d, r.tempering_c)) {}

  HWY_INLINE vec twisted(vec first, vec second, vec middle) const {
    const vec y = hn::Or(hn::And(first, upper_), hn::AndNot(upper_, second));
    const vec odd = hn::Sub(hn::Zero(d), hn::And(second, hn::Set(d, 1u)));
    return hn::Xor3(middle, hn::ShiftRight<1>(y), hn::And(odd, matrix_));
  }

  HWY_INLINE vec tempered(vec y) const {
    y = hn::Xor(y, hn::ShiftRight<Recurrence::first_shift>(y));
    y = hn::Xor(y, hn::And(hn::ShiftLeft<7>(y), b_));
    y = hn::Xor(y, hn::And(hn::ShiftLeft<15>(y), c_));
    return hn::Xor(y, hn::ShiftRight<18>(y));
  }

 private:
  vec upper_, matrix_, b_, c_;
};

} // namespace
} // namespace hvl::streams::HVL_STREAMS_ISA
