// Words of every kind as vectors of scaled uniforms, and loops over blocks of values: what a distribution's
// transform is written with. In the scalar instance a vector is one number.
#pragma once

#include <cstring>
#include <type_traits>

#include "simd/isa.hpp"

namespace hvl::streams::HVL_STREAMS_ISA {
namespace {

template <word_kind Kind>
using word_of =
    std::conditional_t<Kind == word_kind::signed32, std::int32_t,
                       std::conditional_t<Kind == word_kind::unsigned32, std::uint32_t, std::uint64_t>>;

#ifdef HVL_STREAMS_ISA_IS_SCALAR

template <class T>
inline constexpr std::size_t vector_values = 1;

// Uniforms from words: operator()(i) is the vector that starts at word i.
template <word_kind Kind, class T, bool ExactProduct = false>
class word_loader {
 public:
  word_loader(const void* words, coefficients<T> affine)
      : words_(static_cast<const word_of<Kind>*>(words)), affine_(affine) {}
  T operator()(std::size_t i) const { return uniform_value<T>(words_[i], affine_); }

 private:
  const word_of<Kind>* words_;
  coefficients<T> affine_;
};

template <class T>
T clamp(T v, T low, T high) {
  return clamp_to(v, low, high);
}

template <class Integer, class T>
Integer integer_vector(T v, value_range<Integer> range) {
  return integer_value(v, range);
}

// out[i...] = body(i) for every vector; T is the type of computation, which sets the width.
template <class T, class Value, class Body>
void for_each_vector(Value* out, std::size_t count, const Body& body) {
  for (std::size_t i = 0; i < count; ++i)
    out[i] = body(i);
}

#else

namespace hn = hwy::HWY_NAMESPACE;

template <class T>
using vector_tag = hn::ScalableTag<T>;
template <class T>
using vector = hn::Vec<vector_tag<T>>;
template <class T>
inline constexpr std::size_t vector_values = hn::MaxLanes(vector_tag<T>());

// The conversions round once, to nearest even.
HWY_INLINE vector<float> to_float(vector<std::int32_t> w) {
  return hn::ConvertTo(vector_tag<float>(), w);
}

HWY_INLINE vector<float> to_float(vector<std::uint32_t> w) {
#if HWY_TARGET <= HWY_AVX3
  return vector<float>{_mm512_cvtepu32_ps(w.raw)};
#else
  const vector_tag<std::uint32_t> d;
  const vector_tag<std::int32_t> di;
  const vector_tag<float> df;
  // both halves and the product are exact, so only the sum rounds
  const auto high = hn::ConvertTo(df, hn::BitCast(di, hn::ShiftRight<16>(w)));
  const auto low = hn::ConvertTo(df, hn::BitCast(di, hn::And(w, hn::Set(d, 0xFFFFu))));
  return hn::Add(hn::Mul(high, hn::Set(df, 65536.0f)), low);
#endif
}

HWY_INLINE vector<double> to_double(vector<std::uint64_t> w) {
#if HWY_TARGET <= HWY_AVX3
  return vector<double>{_mm512_cvtepu64_pd(w.raw)};
#else
  const vector_tag<std::uint64_t> d;
  const vector_tag<double> dd;
  // 2^84 + high * 2^32 and 2^52 + low, written as bits; only the last sum rounds
  const auto high = hn::BitCast(dd, hn::Or(hn::ShiftRight<32>(w), hn::Set(d, 0x4530000000000000u)));
  const auto low =
      hn::BitCast(dd, hn::Or(hn::And(w, hn::Set(d, 0xFFFFFFFFu)), hn::Set(d, 0x4330000000000000u)));
  return hn::Add(hn::Sub(high, hn::Set(dd, 19342813118337666422669312.0)), low);
#endif
}

HWY_INLINE hn::Vec<hn::Half<vector_tag<float>>> to_float(vector<std::uint64_t> w) {
#if HWY_TARGET <= HWY_AVX3
  return hn::Vec256<float>{_mm512_cvtepu64_ps(w.raw)};
#else
  // A word of more than 53 bits keeps the upper 53 of 59, the lowest of which also says whether one below it
  // was set: that is exact in double, and the step to float rounds it as it would the whole word.
  const vector_tag<std::uint64_t> d;
  const auto low_bits = hn::Set(d, std::uint64_t{0x3F});
  const auto carried = hn::Add(hn::And(w, low_bits), low_bits); // bit 6 set unless the low bits were all 0
  const auto sticky = hn::AndNot(low_bits, hn::Or(w, carried));
  const auto wide = hn::Gt(w, hn::Set(d, (std::uint64_t{1} << 53) - 1));
  return hn::DemoteTo(hn::Half<vector_tag<float>>(), to_double(hn::IfThenElse(wide, sticky, w)));
#endif
}

HWY_INLINE vector<double> to_double(hn::Vec<hn::Half<vector_tag<std::int32_t>>> w) {
  return hn::PromoteTo(vector_tag<double>(), w);
}

HWY_INLINE vector<double> to_double(hn::Vec<hn::Half<vector_tag<std::uint32_t>>> w) {
#if HWY_TARGET <= HWY_AVX3
  return vector<double>{_mm512_cvtepu32_pd(w.raw)};
#else
  const vector_tag<std::uint64_t> d;
  const vector_tag<double> dd;
  return hn::Sub(hn::BitCast(dd, hn::Or(hn::PromoteTo(d, w), hn::Set(d, 0x4330000000000000u))),
                 hn::Set(dd, 4503599627370496.0));
#endif
}

// Uniforms from words: operator()(i) is the vector that starts at word i. Where the product is exact a fused sum rounds
// the same number.
template <word_kind Kind, class T, bool ExactProduct = false>
class word_loader {
 public:
  HWY_INLINE word_loader(const void* words, coefficients<T> affine)
      : words_(words), scale_(hn::Set(vector_tag<T>(), affine.scale)),
        shift_(hn::Set(vector_tag<T>(), affine.shift)) {}

  HWY_INLINE vector<T> operator()(std::size_t i) const {
    if constexpr (ExactProduct)
      return hn::MulAdd(converted(i), scale_, shift_);
    else
      return hn::Add(hn::Mul(converted(i), scale_), shift_);
  }

  // The words as they are.
  HWY_INLINE vector<T> converted(std::size_t i) const {
    using word = word_of<Kind>;
    const vector_tag<word> d;
    const auto* const w = static_cast<const word*>(words_) + i;
    if constexpr (sizeof(T) == 8 && sizeof(word) == 4)
      return to_double(hn::LoadU(hn::Half<vector_tag<word>>(), w));
    else if constexpr (sizeof(T) == 8)
      return to_double(hn::LoadU(d, w));
    else if constexpr (sizeof(word) == 4)
      return to_float(hn::LoadU(d, w));
    else
      return hn::Combine(vector_tag<float>(), to_float(hn::LoadU(d, w + vector_values<word>)),
                         to_float(hn::LoadU(d, w)));
  }

 private:
  const void* words_;
  vector<T> scale_;
  vector<T> shift_;
};

template <class T>
HWY_INLINE hn::Vec<hn::ScalableTag<T>> clamp(hn::Vec<hn::ScalableTag<T>> v, T low, T high) {
  const vector_tag<T> d;
  return hn::Min(hn::Max(v, hn::Set(d, low)), hn::Set(d, high));
}

// As floor_to of streams_scaling.hpp.
template <class Integer, class V>
HWY_INLINE auto floor_vector(V v) {
  using T = hn::TFromV<V>;
  const vector_tag<T> d;
  const hn::Rebind<std::int32_t, vector_tag<T>> di;
  const hn::Rebind<Integer, vector_tag<T>> dr;
  const auto floored = clamp<T>(hn::Floor(v), lowest_of<Integer, T>, highest_of<Integer, T>);
  const auto narrow = [&](V x) {
    if constexpr (sizeof(T) == 4)
      return hn::ConvertTo(di, x);
    else
      return hn::DemoteTo(di, x);
  };
  if constexpr (std::is_signed_v<Integer>) {
    return narrow(floored);
  } else {
    // the upper half of the range is brought below 2^31, which is exact there, and its bit put back
    // afterwards
    const auto half = hn::Set(d, static_cast<T>(2147483648.0));
    if constexpr (sizeof(T) == 8) {
      return hn::Xor(hn::BitCast(dr, narrow(hn::Sub(floored, half))), hn::Set(dr, 0x80000000u));
    } else {
      const auto upper = hn::Ge(floored, half);
      const auto low_bits = hn::BitCast(dr, narrow(hn::Sub(floored, hn::IfThenElseZero(upper, half))));
      return hn::Xor(low_bits, hn::IfThenElseZero(hn::RebindMask(dr, upper), hn::Set(dr, 0x80000000u)));
    }
  }
}

// As integer_value of streams_scaling.hpp.
template <class Integer, class V>
HWY_INLINE auto integer_vector(V v, value_range<Integer> range) {
  const hn::Rebind<Integer, vector_tag<hn::TFromV<V>>> d;
  return hn::Min(hn::Max(floor_vector<Integer>(v), hn::Set(d, range.low)), hn::Set(d, range.high));
}

// out[i...] = body(i) for every vector; T is the type of computation, which sets the width.
template <class T, class Value, class Body>
HWY_INLINE void for_each_vector(Value* HWY_RESTRICT out, std::size_t count, const Body& body) {
  constexpr std::size_t width = vector_values<T>;
  const hn::Rebind<Value, vector_tag<T>> d;
  std::size_t i = 0;
  for (; i + width <= count; i += width)
    hn::StoreU(body(i), d, out + i);
  if (i < count) {
    alignas(vector_alignment) Value tail[width];
    hn::Store(body(i), d, tail);
    std::memcpy(out + i, tail, (count - i) * sizeof(Value));
  }
}

#endif

// On [0, 1) and [-1, 1) the scale is a power of two, except in double where a prime bounds the words.
template <word_kind Kind, class T>
inline constexpr bool unit_is_exact = sizeof(T) == 4 || Kind != word_kind::unsigned32;
template <word_kind Kind, class T>
using unit_loader = word_loader<Kind, T, unit_is_exact<Kind, T>>;
static_assert(uniform_coefficients(word_scale::signed32, 0.0f, 1.0f).scale == 0x1p-32f);
static_assert(uniform_coefficients(word_scale::mcg31m1, 0.0f, 1.0f).scale == 0x1p-31f);
static_assert(uniform_coefficients(word_scale::mrg32k3a, 0.0f, 1.0f).scale == 0x1p-32f);
static_assert(uniform_coefficients(word_scale::mcg59, 0.0f, 1.0f).scale == 0x1p-59f);
static_assert(uniform_coefficients(word_scale::signed32, 0.0, 1.0).scale == 0x1p-32);
static_assert(uniform_coefficients(word_scale::mcg59, 0.0, 1.0).scale == 0x1p-59);

// choose.operator()<Kind>() for a kind of words.
template <class Choose>
transform_function for_kind(word_kind kind, const Choose& choose) {
  switch (kind) {
  case word_kind::signed32:
    return choose.template operator()<word_kind::signed32>();
  case word_kind::unsigned32:
    return choose.template operator()<word_kind::unsigned32>();
  case word_kind::unsigned64:
    return choose.template operator()<word_kind::unsigned64>();
  }
  return nullptr;
}

} // namespace
} // namespace hvl::streams::HVL_STREAMS_ISA
