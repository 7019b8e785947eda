// Groups of several words, word by word of the group: what a transform reads whose values take words of different uses.
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

// Those of a group.
template <std::size_t Words, class Word>
HVL_MATH_INLINE void own_words(const Word* group, std::uint32_t (&own)[Words]) {
  for (std::size_t k = 0; k < Words; ++k)
    own[k] = raw(group[k]);
}

#ifndef HVL_STREAMS_ISA_IS_SCALAR

// A word of 32 bits in the low half of each lane, whose upper half is 0.
template <class Word>
HWY_INLINE vector<double> low_half_to_double(vector<std::uint64_t> w) {
  const vector_tag<std::uint64_t> d;
  const vector_tag<double> dd;
  // 2^52 + the word, a signed one moved up by 2^31
  constexpr bool is_signed = std::is_signed_v<Word>;
  constexpr std::uint64_t base = is_signed ? 0x4330000080000000 : 0x4330000000000000;
  return hn::Sub(hn::BitCast(dd, hn::Xor(w, hn::Set(d, base))),
                 hn::Set(dd, is_signed ? 0x1.000008p52 : 0x1p52));
}

// Word k of group i becomes lane i of to[k], for the first `groups` groups; where they do not fill a vector nothing is
// read behind them.
template <word_kind Kind, class T, std::size_t Words>
HWY_INLINE void converted_groups(const word_of<Kind>* words, std::size_t groups, vector<T> (&to)[Words]) {
  using word = word_of<Kind>;
  constexpr std::size_t width = vector_values<T>;
  if (sizeof(word) == 8 || groups < width) {
    alignas(vector_alignment) word apart[Words][width] = {};
    for (std::size_t i = 0; i < groups; ++i)
      for (std::size_t k = 0; k < Words; ++k)
        apart[k][i] = words[i * Words + k];
    for (std::size_t k = 0; k < Words; ++k)
      to[k] = word_loader<Kind, T>(apart[k], {}).converted(0);
    return;
  }
  if constexpr (sizeof(word) == 4 && sizeof(T) == 4) {
    const vector_tag<word> d;
    if constexpr (Words == 2) {
      const auto low = hn::LoadU(d, words);
      const auto high = hn::LoadU(d, words + width);
      to[0] = to_float(hn::ConcatEven(d, high, low));
      to[1] = to_float(hn::ConcatOdd(d, high, low));
    } else {
      static_assert(Words == 3);
      vector<word> w[3];
      hn::LoadInterleaved3(d, words, w[0], w[1], w[2]);
      for (std::size_t k = 0; k < 3; ++k)
        to[k] = to_float(w[k]);
    }
  } else if constexpr (sizeof(word) == 4) {
    const vector_tag<std::uint64_t> d;
    const auto* pairs = reinterpret_cast<const std::uint64_t*>(words);
    vector<std::uint64_t> w[Words / 2];
    if constexpr (Words == 2) {
      w[0] = hn::LoadU(d, pairs);
    } else if constexpr (Words == 4) {
      const auto low = hn::LoadU(d, pairs);
      const auto high = hn::LoadU(d, pairs + width);
      w[0] = hn::ConcatEven(d, high, low);
      w[1] = hn::ConcatOdd(d, high, low);
    } else {
      static_assert(Words == 6);
      hn::LoadInterleaved3(d, pairs, w[0], w[1], w[2]);
    }
    for (std::size_t k = 0; k < Words / 2; ++k) {
      to[2 * k] = low_half_to_double<word>(hn::And(w[k], hn::Set(d, 0xFFFFFFFFu)));
      to[2 * k + 1] = low_half_to_double<word>(hn::ShiftRight<32>(w[k]));
    }
  }
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

// Makes `count` values, a Chunk after the other, of groups of `group_words` words.
template <class Chunk, class Parameters, class Word>
void in_chunks(const Parameters& parameters, const Word* words, std::int32_t* out, std::size_t count,
               std::size_t group_words) {
  for (std::size_t made; count != 0; count -= made, out += made, words += made * group_words) {
    made = HWY_MIN(Chunk::most, count);
    Chunk(parameters, words, out, made).make();
  }
}

#endif

} // namespace
} // namespace hvl::streams::HVL_STREAMS_ISA
