// The words of hvl/math/transforms/attempt_words.hpp for many groups at a time.
#pragma once

#include <hvl/math/transforms/attempt_words.hpp>

#include "simd/word_groups.hpp"

namespace hvl::streams::HVL_STREAMS_ISA {
namespace {

#ifndef HVL_STREAMS_ISA_IS_SCALAR

// The own words of a group of two, the first one low.
template <class Word>
HWY_INLINE std::uint64_t own_pair(const Word* group) {
  return raw(group[0]) | std::uint64_t{raw(group[1])} << 32;
}

struct attempt_pairs {
  vector<std::uint64_t> first, second;
};

// Of groups of two words, a pair to a lane: the words of attempt_words in pairs, the first one of each low. The multiply
// reads only the low half of a lane, so what stands in the other does not matter before the end.
HWY_INLINE attempt_pairs attempt_word_pairs(vector<std::uint64_t> own, std::uint32_t attempt,
                                            std::uint32_t distribution) {
  const vector_tag<std::uint64_t> d;
  const vector_tag<std::uint32_t> d32;
  const auto product = [&](vector<std::uint64_t> x, std::uint32_t multiplier) HVL_STREAMS_INLINE_LAMBDA {
    return hn::MulEven(hn::BitCast(d32, x), hn::BitCast(d32, hn::Set(d, multiplier)));
  };
  auto x0 = own, x1 = hn::ShiftRight<32>(own), x2 = hn::Zero(d), x3 = x2;
  std::uint32_t key0 = attempt, key1 = distribution;
#pragma GCC unroll 10
  for (int round = 1; round < math::philox_rounds; ++round) {
    const auto p0 = product(x0, math::philox_multiplier0);
    const auto p1 = product(x2, math::philox_multiplier1);
    x0 = hn::Xor3(hn::ShiftRight<32>(p1), x1, hn::Set(d, key0));
    x2 = hn::Xor3(hn::ShiftRight<32>(p0), x3, hn::Set(d, key1));
    x1 = p1;
    x3 = p0;
    key0 += math::philox_bump0;
    key1 += math::philox_bump1;
  }
  const auto pair = [&](vector<std::uint64_t> p, vector<std::uint64_t> x,
                        std::uint32_t key) HVL_STREAMS_INLINE_LAMBDA {
    return hn::Xor(hn::RotateRight<32>(p), hn::And(hn::Xor(x, hn::Set(d, key)), hn::Set(d, 0xFFFFFFFFu)));
  };
  return {pair(product(x2, math::philox_multiplier1), x1, key0),
          pair(product(x0, math::philox_multiplier0), x3, key1)};
}

#endif

} // namespace
} // namespace hvl::streams::HVL_STREAMS_ISA
