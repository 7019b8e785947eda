// Every function of this folder is written once, over a policy that says what a value is: one number (below; kernels)
// or a vector of numbers (a SIMD library's policy). Only correctly rounded operations are used, so all policies give
// the same bits. Compile with floating-point contraction off.
//
// A policy O has
//   scalar, bits_type        float and std::uint32_t, or double and std::uint64_t
//   value, word, mask        scalars, their bits, truth values: one or many; + - * / on values and + - & | ^ on words
//                            are the operators of these types
//   set(scalar), set_word(bits_type)
//   bits(value), from_bits(word), shift_left<n>(word), shift_right<n>(word) (zeros come in)
//   fma(a, b, c)             a * b + c, rounded once
//   sqrt(a)                  rounded once
//   lt(a, b)                 a < b; false when one is NaN
//   odd(word)                its lowest bit, as a mask
//   select(mask, a, b)       mask ? a : b
//   any(mask)                whether it is true anywhere
//   greater(a, b)            a < b ? b : a, so a when they are equal or one is NaN
//   lesser(a, b)             b < a ? b : a, likewise
//   lookup<n>(table, word)   table[word] of n numbers; every word is below n
//   signed_value(word)       float only: the word as a signed integer, converted; it has 24 significant bits at most
//   widened(f, a...)         float only: f over the policy for double, on the arguments converted to double; the result
//                            is rounded to float. f is called as f(wide_policy{}, a...), perhaps once for each part of a
//                            vector.
// A device whose compiler needs its own fma or sqrt derives a policy and hides these two.
#pragma once

#include <cstddef>
#include <cstdint>

// Forced, so that no two instruction sets of one program share an out-of-line copy.
#define HVL_MATH_INLINE inline __attribute__((always_inline))

namespace hvl::math {

template <class T>
struct scalar_ops;

namespace detail {

template <class T, class Bits>
struct scalar_basics {
  using scalar = T;
  using bits_type = Bits;
  using value = T;
  using word = Bits;
  using mask = bool;

  static HVL_MATH_INLINE T set(T a) { return a; }
  static HVL_MATH_INLINE Bits set_word(Bits a) { return a; }
  static HVL_MATH_INLINE Bits bits(T a) { return __builtin_bit_cast(Bits, a); }
  static HVL_MATH_INLINE T from_bits(Bits a) { return __builtin_bit_cast(T, a); }
  template <int N>
  static HVL_MATH_INLINE Bits shift_left(Bits a) {
    return a << N;
  }
  template <int N>
  static HVL_MATH_INLINE Bits shift_right(Bits a) {
    return a >> N;
  }
  static HVL_MATH_INLINE bool lt(T a, T b) { return a < b; }
  static HVL_MATH_INLINE bool odd(Bits a) { return (a & 1) != 0; }
  static HVL_MATH_INLINE T select(bool m, T a, T b) { return m ? a : b; }
  static HVL_MATH_INLINE bool any(bool m) { return m; }
  static HVL_MATH_INLINE T greater(T a, T b) { return a < b ? b : a; }
  static HVL_MATH_INLINE T lesser(T a, T b) { return b < a ? b : a; }
  template <std::size_t N>
  static HVL_MATH_INLINE T lookup(const T (&table)[N], Bits index) {
    return table[index];
  }
};

} // namespace detail

template <>
struct scalar_ops<double> : detail::scalar_basics<double, std::uint64_t> {
  static HVL_MATH_INLINE double fma(double a, double b, double c) { return __builtin_fma(a, b, c); }
  static HVL_MATH_INLINE double sqrt(double a) { return __builtin_sqrt(a); }
};

template <>
struct scalar_ops<float> : detail::scalar_basics<float, std::uint32_t> {
  static HVL_MATH_INLINE float fma(float a, float b, float c) { return __builtin_fmaf(a, b, c); }
  static HVL_MATH_INLINE float sqrt(float a) { return __builtin_sqrtf(a); }
  static HVL_MATH_INLINE float signed_value(std::uint32_t a) {
    return static_cast<float>(static_cast<std::int32_t>(a));
  }
  template <class F, class... Values>
  static HVL_MATH_INLINE float widened(const F& f, Values... a) {
    return static_cast<float>(f(scalar_ops<double>{}, static_cast<double>(a)...));
  }
};

} // namespace hvl::math
