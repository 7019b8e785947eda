// Groups of several words, word by word of the group: what a transform reads whose value takes more than one word.
#pragma once

#include "simd/vector_ops.hpp"

namespace hvl::streams::HVL_STREAMS_ISA {
namespace {

// The 32 bits of a word that hashes take.
template <class Word>
HVL_MATH_INLINE std::uint32_t raw(Word word) {
  if constexpr (sizeof(Word) == 8)
    return static_cast<std::uint32_t>(word >> 27);
  else
    return static_cast<std::uint32_t>(word);
}

#ifndef HVL_STREAMS_ISA_IS_SCALAR

template <class D, class Word, class Vector>
HWY_INLINE void load_groups(D d, const Word* words, Vector (&to)[2]) {
  hn::LoadInterleaved2(d, words, to[0], to[1]);
}
template <class D, class Word, class Vector>
HWY_INLINE void load_groups(D d, const Word* words, Vector (&to)[3]) {
  hn::LoadInterleaved3(d, words, to[0], to[1], to[2]);
}
template <class D, class Word, class Vector>
HWY_INLINE void load_groups(D d, const Word* words, Vector (&to)[4]) {
  hn::LoadInterleaved4(d, words, to[0], to[1], to[2], to[3]);
}

// Vector k of the result holds word k of each group, converted to T.
template <class T, class Word, std::size_t Words>
HWY_INLINE void converted_groups(const Word* words, vector<T> (&to)[Words]) {
  if constexpr (sizeof(T) == 8) {
    using tag = std::conditional_t<sizeof(Word) == 8, vector_tag<Word>, hn::Half<vector_tag<std::uint32_t>>>;
    const hn::Rebind<Word, tag> d;
    hn::Vec<decltype(d)> w[Words];
    load_groups(d, words, w);
    for (std::size_t k = 0; k < Words; ++k)
      to[k] = to_double(w[k]);
  } else if constexpr (sizeof(Word) == 4) {
    const vector_tag<Word> d;
    vector<Word> w[Words];
    load_groups(d, words, w);
    for (std::size_t k = 0; k < Words; ++k)
      to[k] = to_float(w[k]);
  } else {
    const vector_tag<Word> d;
    vector<Word> low[Words], high[Words];
    load_groups(d, words, low);
    load_groups(d, words + vector_values<Word> * Words, high);
    for (std::size_t k = 0; k < Words; ++k)
      to[k] = hn::Combine(vector_tag<T>(), to_float(high[k]), to_float(low[k]));
  }
}

// The same of the first `groups` groups only, the others made of zeros: nothing is read behind them.
template <class T, class Word, std::size_t Words>
HWY_INLINE void converted_last_groups(const Word* words, std::size_t groups, vector<T> (&to)[Words]) {
  alignas(vector_alignment) Word copy[vector_values<T> * Words] = {};
  std::memcpy(copy, words, groups * Words * sizeof(Word));
  converted_groups<T>(copy, to);
}

// Converted words as uniforms, with the bits of uniform_value.
template <word_kind Kind, class T>
HWY_INLINE vector<T> scaled(vector<T> converted, coefficients<T> affine) {
  const auto scale = hn::Set(vector_tag<T>(), affine.scale);
  const auto shift = hn::Set(vector_tag<T>(), affine.shift);
  if constexpr (unit_is_exact<Kind, T>)
    return hn::MulAdd(converted, scale, shift);
  else
    return hn::Add(hn::Mul(converted, scale), shift);
}

#endif

} // namespace
} // namespace hvl::streams::HVL_STREAMS_ISA
