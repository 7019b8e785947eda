// Loops over the values of continuous distributions. A body is a template over the policy that it runs with: one vector
// or two vectors at a time.
#pragma once

#include "simd/vector_ops.hpp"

namespace hvl::streams::HVL_STREAMS_ISA {
namespace {

#ifdef HVL_STREAMS_ISA_IS_SCALAR

// out[i...] = body(uniform i...)
template <class T, class Value, class Load, class Body>
void for_each_value(Value* out, std::size_t count, const Load& load, const Body& body) {
  for (std::size_t i = 0; i < count; ++i)
    out[i] = narrowed<Value>(body.template operator()<vector_ops<T>>(load(i)));
}

// out[i...] = body(first, second), which are the uniforms 2 i and 2 i + 1.
template <class T, class Value, class Load, class Body>
void for_each_of_pair(Value* out, std::size_t count, const Load& load, const Body& body) {
  for (std::size_t i = 0; i < count; ++i)
    out[i] = narrowed<Value>(body.template operator()<vector_ops<T>>(load(2 * i), load(2 * i + 1)));
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

// Writes one vector at `at`, or its first elements where the block ends.
template <class T, class Value>
HWY_INLINE void store_some(typename vector_ops<T>::value v, Value* at, std::size_t count) {
  constexpr std::size_t width = vector_values<T>;
  const hn::Rebind<Value, vector_tag<T>> d;
  if (count >= width) {
    hn::StoreU(narrowed<Value>(v), d, at);
    return;
  }
  alignas(vector_alignment) Value tail[width];
  hn::Store(narrowed<Value>(v), d, tail);
  std::memcpy(at, tail, count * sizeof(Value));
}

// out[i...] = body(uniforms i...). T is the type of the uniforms and of the computation.
template <class T, class Value, class Load, class Body>
HWY_INLINE void for_each_value(Value* HWY_RESTRICT out, std::size_t count, const Load& load,
                               const Body& body) {
  constexpr std::size_t width = vector_values<T>;
  const hn::Rebind<Value, vector_tag<T>> d;
  std::size_t i = 0;
  for (; i + 2 * width <= count; i += 2 * width) {
    const auto values = body.template operator()<two_vectors_ops<T>>({load(i), load(i + width)});
    hn::StoreU(narrowed<Value>(values.a), d, out + i);
    hn::StoreU(narrowed<Value>(values.b), d, out + i + width);
  }
  for (; i < count; i += width)
    store_some<T>(body.template operator()<vector_ops<T>>(load(i)), out + i, count - i);
}

// out[i...] = body(first, second), which are the uniforms 2 i... and 2 i + 1...
template <class T, class Value, class Load, class Body>
HWY_INLINE void for_each_of_pair(Value* HWY_RESTRICT out, std::size_t count, const Load& load,
                                 const Body& body) {
  constexpr std::size_t width = vector_values<T>;
  const vector_tag<T> d;
  const auto split = [&](std::size_t i, auto& first, auto& second) __attribute__((always_inline)) {
    const auto low = load(2 * i);
    const auto high = load(2 * i + width);
    first = hn::ConcatEven(d, high, low);
    second = hn::ConcatOdd(d, high, low);
  };
  const hn::Rebind<Value, vector_tag<T>> dv;
  std::size_t i = 0;
  for (; i + 2 * width <= count; i += 2 * width) {
    typename two_vectors_ops<T>::value first, second;
    split(i, first.a, second.a);
    split(i + width, first.b, second.b);
    const auto values = body.template operator()<two_vectors_ops<T>>(first, second);
    hn::StoreU(narrowed<Value>(values.a), dv, out + i);
    hn::StoreU(narrowed<Value>(values.b), dv, out + i + width);
  }
  for (; i < count; i += width) {
    typename vector_ops<T>::value first, second;
    split(i, first, second);
    store_some<T>(body.template operator()<vector_ops<T>>(first, second), out + i, count - i);
  }
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
