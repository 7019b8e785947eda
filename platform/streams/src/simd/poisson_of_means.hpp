// Poisson numbers of means of their own, a mean to a lane.
#pragma once

#include <hvl/math/transforms/poisson_v.hpp>

#include "simd/own_laws.hpp"
#include "simd/word_groups.hpp"

#ifndef HVL_STREAMS_ISA_IS_SCALAR

namespace hvl::streams::HVL_STREAMS_ISA {
namespace {

// Of a number are the last two words of its group of `GroupWords`.
template <word_kind Kind, std::size_t GroupWords, std::size_t Most>
struct poisson_laws {
  using O = vector_ops<double>;
  using own_words = std::uint32_t[2];

  const word_of<Kind>* words; // of the first place
  double cell;                // of the uniforms on [0, 1)
  alignas(vector_alignment) double first[Most];
  alignas(vector_alignment) double second[Most];

  static HWY_INLINE O::mask is_added_up(vector<double> means) {
    return O::lt(means, O::set(math::poisson_v_least_rejected));
  }

  HWY_INLINE vector<double> added_up(std::size_t i, vector<double> means, std::uint64_t) const {
    const vector_tag<double> d;
    return math::poisson_added_up<O>(means,
                                     math::refined<O>(hn::Load(d, first + i), hn::Load(d, second + i), cell));
  }

  HWY_INLINE first_uniforms<vector<double>> first_attempts(std::size_t i) const {
    const vector_tag<double> d;
    return {hn::Load(d, first + i) - O::set(0.5), hn::Load(d, second + i)};
  }

  HWY_INLINE double second_uniform(std::size_t place, double v) const {
    double part = 0.5;
    if (HWY_UNLIKELY(v < math::rejection_coarse_v)) {
      own_words own;
      own_words_at(place, own);
      part = math::rejection_refinement(own);
    }
    return math::refined<math::scalar_ops<double>>(v, part, cell);
  }

  HWY_INLINE void own_words_at(std::size_t place, own_words& own) const {
    streams::HVL_STREAMS_ISA::own_words(words + (place + 1) * GroupWords - 2, own);
  }

  template <class P>
  static HWY_INLINE math::rejection_law_of<typename P::value> law_of(typename P::value mean) {
    return math::poisson_rejection_of<P>(mean);
  }
};

template <std::size_t Most>
HWY_INLINE void store_poisson_numbers(const double (&numbers)[Most], std::int32_t* values,
                                      std::size_t count) {
  for (std::size_t i = 0; i < count; ++i)
    values[i] = static_cast<std::int32_t>(math::rejection_result<math::scalar_ops<double>>(numbers[i]));
}

} // namespace
} // namespace hvl::streams::HVL_STREAMS_ISA

#endif
