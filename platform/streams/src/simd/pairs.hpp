// Loops for methods that take their uniforms in pairs.
#pragma once

#include "simd/vector_ops.hpp"

namespace hvl::streams::HVL_STREAMS_ISA {
namespace {

#ifdef HVL_STREAMS_ISA_IS_SCALAR

// out[i...] = body(first, second), which are the uniforms 2 i and 2 i + 1.
template <class T, class Load, class Body>
void for_each_of_pair(T* out, std::size_t count, const Load& load, const Body& body) {
  for (std::size_t i = 0; i < count; ++i)
    out[i] = body(load(2 * i), load(2 * i + 1));
}

// body(u1, u2, first, second) makes the values 2 i and 2 i + 1 of the uniforms at the same places. A count that is odd
// drops the last value.
template <class T, class Load, class Body>
void for_each_pair(T* out, std::size_t count, const Load& load, const Body& body) {
  for (std::size_t i = 0; i < count; i += 2) {
    T first, second;
    body.template operator()<vector_ops<T>>(load(i), load(i + 1), first, second);
    out[i] = first;
    if (i + 1 < count)
      out[i + 1] = second;
  }
}

#else

template <class T, class Load, class Body>
HWY_INLINE void for_each_of_pair(T* HWY_RESTRICT out, std::size_t count, const Load& load, const Body& body) {
  const vector_tag<T> d;
  for_each_vector<T>(
      out, count, [&](std::size_t i) __attribute__((always_inline)) {
        const auto low = load(2 * i);
        const auto high = load(2 * i + vector_values<T>);
        return body(hn::ConcatEven(d, high, low), hn::ConcatOdd(d, high, low));
      });
}

// The elements of two vectors in an order of their own, even ones and odd ones apart; zip undoes it. Both stay within
// blocks of 128 bits, where they cost one instruction each.
HWY_INLINE void unzip(vector<float> low, vector<float> high, vector<float>& even, vector<float>& odd) {
#if HWY_TARGET <= HWY_AVX3
  even = vector<float>{_mm512_shuffle_ps(low.raw, high.raw, 0x88)};
  odd = vector<float>{_mm512_shuffle_ps(low.raw, high.raw, 0xDD)};
#else
  even = vector<float>{_mm256_shuffle_ps(low.raw, high.raw, 0x88)};
  odd = vector<float>{_mm256_shuffle_ps(low.raw, high.raw, 0xDD)};
#endif
}

HWY_INLINE void unzip(vector<double> low, vector<double> high, vector<double>& even, vector<double>& odd) {
  const vector_tag<double> d;
  even = hn::InterleaveLower(d, low, high);
  odd = hn::InterleaveUpper(d, low, high);
}

template <class T, class Load, class Body>
HWY_INLINE void for_each_pair(T* HWY_RESTRICT out, std::size_t count, const Load& load, const Body& body) {
  constexpr std::size_t width = vector_values<T>;
  const vector_tag<T> d;
  const auto two_vectors = [&](std::size_t i, T * HWY_RESTRICT to) __attribute__((always_inline)) {
    vector<T> u1, u2, first, second;
    unzip(load(i), load(i + width), u1, u2);
    body.template operator()<vector_ops<T>>(u1, u2, first, second);
    hn::StoreU(hn::InterleaveLower(d, first, second), d, to);
    hn::StoreU(hn::InterleaveUpper(d, first, second), d, to + width);
  };
  using two = two_vectors_ops<T>;
  std::size_t i = 0;
  for (; i + 4 * width <= count; i += 4 * width) {
    typename two::value u1, u2, first, second;
    unzip(load(i), load(i + width), u1.a, u2.a);
    unzip(load(i + 2 * width), load(i + 3 * width), u1.b, u2.b);
    body.template operator()<two>(u1, u2, first, second);
    hn::StoreU(hn::InterleaveLower(d, first.a, second.a), d, out + i);
    hn::StoreU(hn::InterleaveUpper(d, first.a, second.a), d, out + i + width);
    hn::StoreU(hn::InterleaveLower(d, first.b, second.b), d, out + i + 2 * width);
    hn::StoreU(hn::InterleaveUpper(d, first.b, second.b), d, out + i + 3 * width);
  }
  for (; i + 2 * width <= count; i += 2 * width)
    two_vectors(i, out + i);
  if (i < count) {
    alignas(vector_alignment) T tail[2 * width];
    two_vectors(i, tail);
    std::memcpy(out + i, tail, (count - i) * sizeof(T));
  }
}

#endif

} // namespace
} // namespace hvl::streams::HVL_STREAMS_ISA
