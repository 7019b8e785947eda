// The words of every scale, and how methods take them.
#pragma once

#include <cstdint>

#include "hvl/streams_scaling.hpp"

namespace hvl::streams::test {

struct word_range {
  const char* name;
  word_scale scale;
  std::uint64_t first, last, step; // of signed32: the words' bits
};
inline constexpr word_range ranges[] = {
    {"signed 32-bit", word_scale::signed32, 0, 0xFFFFFFFF, 1},
    {"mcg31m1", word_scale::mcg31m1, 1, 0x7FFFFFFE, 1},
    {"mrg32k3a", word_scale::mrg32k3a, 1, 4294967087, 1},
    {"mcg59", word_scale::mcg59, 1, (std::uint64_t{1} << 59) - 1, 1u << 27}};

template <class T>
T uniform(const word_range& r, std::uint64_t word, T low, T high) {
  const coefficients<T> c = uniform_coefficients(r.scale, low, high);
  if (r.scale == word_scale::signed32)
    return uniform_value<T>(static_cast<std::int32_t>(static_cast<std::uint32_t>(word)), c);
  return uniform_value<T>(word, c);
}

// As further attempts take a word.
inline std::uint32_t bits(const word_range& r, std::uint64_t word) {
  return static_cast<std::uint32_t>(r.scale == word_scale::mcg59 ? word >> 27 : word);
}

// A word as the methods take it: on [0, 1) and on [-1, 1).
template <class T>
struct uniforms {
  T u, v;
};

template <class T>
uniforms<T> uniforms_of(const word_range& r, std::uint64_t word) {
  return {uniform(r, word, T(0), T(1)), uniform(r, word, T(-1), T(1))};
}

struct word_pair {
  std::uint64_t first, second;
  std::uint32_t own[2];
};

// The word and another one: both extremes and the middle, and any.
inline constexpr std::uint64_t other_words = 4;
inline word_pair pair_of(const word_range& r, std::uint64_t word, std::uint64_t which_other) {
  const std::uint64_t half = (r.last - r.first) / 2, any = word * 0x9E3779B97F4A7C15 % (r.last - r.first);
  const std::uint64_t other = r.first + (which_other < 3 ? half * which_other : any);
  return {word, other, {bits(r, word), bits(r, other)}};
}
inline word_pair swapped(const word_pair& w) {
  return {w.second, w.first, {w.own[1], w.own[0]}};
}

} // namespace hvl::streams::test
