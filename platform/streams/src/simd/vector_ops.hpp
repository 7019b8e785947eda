// The policy by which the functions of hvl/math run over this instruction set's vectors.
#pragma once

#include <hvl/math/ops.hpp>

#include "simd/uniform.hpp"

// Bodies of loops are inlined into them, as the functions that they call are.
#define HVL_STREAMS_INLINE_LAMBDA __attribute__((always_inline))

namespace hvl::streams::HVL_STREAMS_ISA {
namespace {

#ifdef HVL_STREAMS_ISA_IS_SCALAR

template <class T>
using vector_ops = math::scalar_ops<T>;

#else

static_assert(HWY_TARGET <= HWY_AVX2, "MulAdd is fused from AVX2 on only");

template <class T>
struct vector_ops;

template <class T, class Bits>
struct vector_basics {
  using scalar = T;
  using bits_type = Bits;
  using value = vector<T>;
  using word = vector<Bits>;
  using mask = hn::Mask<vector_tag<T>>;

  static HWY_INLINE value set(T a) { return hn::Set(vector_tag<T>(), a); }
  static HWY_INLINE word set_word(Bits a) { return hn::Set(vector_tag<Bits>(), a); }
  static HWY_INLINE word bits(value a) { return hn::BitCast(vector_tag<Bits>(), a); }
  static HWY_INLINE value from_bits(word a) { return hn::BitCast(vector_tag<T>(), a); }
  template <int N>
  static HWY_INLINE word shift_left(word a) {
    return hn::ShiftLeft<N>(a);
  }
  template <int N>
  static HWY_INLINE word shift_right(word a) {
    return hn::ShiftRight<N>(a);
  }
  static HWY_INLINE value fma(value a, value b, value c) { return hn::MulAdd(a, b, c); }
  static HWY_INLINE value sqrt(value a) { return hn::Sqrt(a); }
  static HWY_INLINE mask lt(value a, value b) { return hn::Lt(a, b); }
  static HWY_INLINE mask odd(word a) { return hn::RebindMask(vector_tag<T>(), hn::TestBit(a, set_word(1))); }
  static HWY_INLINE value select(mask m, value a, value b) { return hn::IfThenElse(m, a, b); }
  static HWY_INLINE bool any(mask m) { return !hn::AllFalse(vector_tag<T>(), m); }
  // The processor's maximum and minimum give their second operand when both are equal or one is NaN.
  static HWY_INLINE value greater(value a, value b) { return hn::Max(b, a); }
  static HWY_INLINE value lesser(value a, value b) { return hn::Min(b, a); }
};

template <>
struct vector_ops<double> : vector_basics<double, std::uint64_t> {
  // 8 or 32 numbers fit registers, which are faster than a gather; of a longer table the first 32 serve most vectors
  template <std::size_t N>
  static HWY_INLINE value lookup(const double (&table)[N], word index) {
#if HWY_TARGET <= HWY_AVX3
    if constexpr (N == 8) {
      return value{_mm512_permutexvar_pd(index.raw, _mm512_loadu_pd(table))};
    } else if (N >= 32 && HWY_LIKELY(hn::AllTrue(vector_tag<std::uint64_t>(), hn::Lt(index, set_word(32))))) {
      const auto half = [&](std::size_t i) {
        return _mm512_permutex2var_pd(_mm512_loadu_pd(table + i), index.raw, _mm512_loadu_pd(table + i + 8));
      };
      return value{
          _mm512_mask_mov_pd(half(0), _mm512_test_epi64_mask(index.raw, _mm512_set1_epi64(16)), half(16))};
    }
#endif
    return hn::GatherIndex(vector_tag<double>(), table, hn::BitCast(vector_tag<std::int64_t>(), index));
  }
};

template <>
struct vector_ops<float> : vector_basics<float, std::uint32_t> {
  // a table of 32 fits registers, which is faster than a gather
  static HWY_INLINE value lookup(const float (&table)[32], word index) {
#if HWY_TARGET <= HWY_AVX3
    return value{_mm512_permutex2var_ps(_mm512_loadu_ps(table), index.raw, _mm512_loadu_ps(table + 16))};
#else
    const auto quarter = [&](std::size_t i) {
      return _mm256_permutevar8x32_ps(_mm256_loadu_ps(table + 8 * i), index.raw);
    };
    const __m256 bit3 = _mm256_castsi256_ps(_mm256_slli_epi32(index.raw, 28));
    const __m256 bit4 = _mm256_castsi256_ps(_mm256_slli_epi32(index.raw, 27));
    return value{_mm256_blendv_ps(_mm256_blendv_ps(quarter(0), quarter(1), bit3),
                                  _mm256_blendv_ps(quarter(2), quarter(3), bit3), bit4)};
#endif
  }

  static HWY_INLINE value signed_value(word a) {
    return hn::ConvertTo(vector_tag<float>(), hn::BitCast(vector_tag<std::int32_t>(), a));
  }

  template <class F>
  static HWY_INLINE value widened(const F& f, value a);
};

// Two vectors at a time as one value. Their instructions alternate, which keeps the processor busy where one vector's
// wait for each other.
template <class T>
struct two_vectors_ops {
  using one = vector_ops<T>;
  using scalar = T;
  using bits_type = typename one::bits_type;

  struct mask {
    typename one::mask a, b;
  };
  template <class V>
  struct twice {
    V a, b;
    friend HWY_INLINE twice operator+(twice x, twice y) { return {x.a + y.a, x.b + y.b}; }
    friend HWY_INLINE twice operator-(twice x, twice y) { return {x.a - y.a, x.b - y.b}; }
    friend HWY_INLINE twice operator*(twice x, twice y) { return {x.a * y.a, x.b * y.b}; }
    friend HWY_INLINE twice operator/(twice x, twice y) { return {x.a / y.a, x.b / y.b}; }
    friend HWY_INLINE twice operator&(twice x, twice y) { return {x.a & y.a, x.b & y.b}; }
    friend HWY_INLINE twice operator|(twice x, twice y) { return {x.a | y.a, x.b | y.b}; }
    friend HWY_INLINE twice operator^(twice x, twice y) { return {x.a ^ y.a, x.b ^ y.b}; }
  };
  using value = twice<typename one::value>;
  using word = twice<typename one::word>;

  static HWY_INLINE value set(T x) { return {one::set(x), one::set(x)}; }
  static HWY_INLINE word set_word(bits_type x) { return {one::set_word(x), one::set_word(x)}; }
  static HWY_INLINE word bits(value x) { return {one::bits(x.a), one::bits(x.b)}; }
  static HWY_INLINE value from_bits(word x) { return {one::from_bits(x.a), one::from_bits(x.b)}; }
  template <int N>
  static HWY_INLINE word shift_left(word x) {
    return {one::template shift_left<N>(x.a), one::template shift_left<N>(x.b)};
  }
  template <int N>
  static HWY_INLINE word shift_right(word x) {
    return {one::template shift_right<N>(x.a), one::template shift_right<N>(x.b)};
  }
  static HWY_INLINE value fma(value x, value y, value z) {
    return {one::fma(x.a, y.a, z.a), one::fma(x.b, y.b, z.b)};
  }
  static HWY_INLINE value sqrt(value x) { return {one::sqrt(x.a), one::sqrt(x.b)}; }
  static HWY_INLINE mask lt(value x, value y) { return {one::lt(x.a, y.a), one::lt(x.b, y.b)}; }
  static HWY_INLINE mask odd(word x) { return {one::odd(x.a), one::odd(x.b)}; }
  static HWY_INLINE value select(mask m, value x, value y) {
    return {one::select(m.a, x.a, y.a), one::select(m.b, x.b, y.b)};
  }
  static HWY_INLINE bool any(mask m) { return one::any(m.a) || one::any(m.b); }
  static HWY_INLINE value greater(value x, value y) {
    return {one::greater(x.a, y.a), one::greater(x.b, y.b)};
  }
  static HWY_INLINE value lesser(value x, value y) { return {one::lesser(x.a, y.a), one::lesser(x.b, y.b)}; }
  template <std::size_t N>
  static HWY_INLINE value lookup(const T (&table)[N], word index) {
    return {one::lookup(table, index.a), one::lookup(table, index.b)};
  }
  static HWY_INLINE value signed_value(word x) { return {one::signed_value(x.a), one::signed_value(x.b)}; }
  template <class F>
  static HWY_INLINE value widened(const F& f, value x) {
    return {one::widened(f, x.a), one::widened(f, x.b)};
  }
};

template <class F>
HWY_INLINE vector_ops<float>::value vector_ops<float>::widened(const F& f, value a) {
  const hn::Half<vector_tag<float>> half;
  const vector_tag<double> d;
  using wide = two_vectors_ops<double>;
  const typename wide::value w = f(wide{}, typename wide::value{hn::PromoteTo(d, hn::LowerHalf(half, a)),
                                                                hn::PromoteTo(d, hn::UpperHalf(half, a))});
  return hn::Combine(vector_tag<float>(), hn::DemoteTo(half, w.b), hn::DemoteTo(half, w.a));
}

// The lanes of a mask, one bit each.
template <class T>
HWY_INLINE std::uint64_t bits_of(typename vector_ops<T>::mask m) {
#if HWY_TARGET <= HWY_AVX3
  return m.raw;
#else
  if constexpr (sizeof(T) == 4)
    return static_cast<unsigned>(_mm256_movemask_ps(m.raw));
  else
    return static_cast<unsigned>(_mm256_movemask_pd(m.raw));
#endif
}

#endif

// Computed values to the result type, real ones rounded once at most, integers cut off.
template <class Value, class V>
HVL_MATH_INLINE auto narrowed(V v) {
#ifdef HVL_STREAMS_ISA_IS_SCALAR
  return static_cast<Value>(v);
#else
  if constexpr (sizeof(Value) < sizeof(hn::TFromV<V>))
    return hn::DemoteTo(hn::Half<vector_tag<Value>>(), v);
  else
    return v;
#endif
}

template <word_kind Kind, class Choose>
transform_function for_precision(precision p, const Choose& choose) {
  return p == precision::single ? choose.template operator()<Kind, float>()
                                : choose.template operator()<Kind, double>();
}

// choose.operator()<Kind, T>() for a kind of words and a result type.
template <class Choose>
transform_function for_kind_and_precision(word_kind kind, precision p, const Choose& choose) {
  return for_kind(kind, [&]<word_kind Kind>() { return for_precision<Kind>(p, choose); });
}

} // namespace
} // namespace hvl::streams::HVL_STREAMS_ISA
