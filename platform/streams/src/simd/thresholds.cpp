// Discrete laws by thresholds. Most values are decided by their first words: compared in integers with the thresholds, which
// a guide leads to; those that come too near to a threshold, and those of cells with several of them, by both words in
// double.
#include "thresholds.hpp"

#include <hvl/math/transforms/thresholds.hpp>

#include "simd/value_loops.hpp"

namespace hvl::streams::HVL_STREAMS_ISA {
namespace {

template <word_kind Kind>
HVL_MATH_INLINE double uniform_of(const threshold_parameters& p, const word_of<Kind>* pair) {
  return math::refined<math::scalar_ops<double>>(uniform_value<double>(pair[0], p.unit),
                                                 uniform_value<double>(pair[1], p.unit), p.unit.scale);
}

HVL_MATH_INLINE std::int32_t value_behind(const vqs_thresholds& t, std::uint32_t passed) {
  return t.origin + t.step * static_cast<std::int32_t>(passed);
}

// The first word of a pair in units of 2^-32, rounded down.
template <word_kind Kind>
HVL_MATH_INLINE std::uint32_t first_word(const threshold_parameters& p, const word_of<Kind>* pair) {
  if constexpr (Kind == word_kind::signed32)
    return static_cast<std::uint32_t>(pair[0]) ^ 0x80000000u;
  else if constexpr (Kind == word_kind::unsigned32)
    return pair[0] * p.first_word_unit;
  else
    return static_cast<std::uint32_t>(pair[0] >> 27);
}

template <word_kind Kind>
HVL_MATH_INLINE std::int32_t guided_value(const threshold_parameters& p, const word_of<Kind>* pair) {
  const vqs_thresholds& t = p.table;
  const std::uint32_t passed =
      t.cells != nullptr ? t.cells[first_word<Kind>(p, pair) >> (32 - t.cell_bits)] / 2 : 0;
  return value_behind(t, math::thresholds_passed_from(t.upper, passed, uniform_of<Kind>(p, pair)));
}

// Inlined, as compilers leave the upper halves of vector registers in use where a call is a function's last act.
template <word_kind Kind>
HVL_MATH_INLINE void one_by_one(const threshold_parameters& p, const word_of<Kind>* words,
                                std::int32_t* values, std::size_t count) noexcept {
  const vqs_thresholds& t = p.table;
  if (t.low != nullptr)
    for (std::size_t i = 0; i < count; ++i)
      values[i] = guided_value<Kind>(p, words + 2 * i);
  else
    for (std::size_t i = 0; i < count; ++i)
      values[i] =
          value_behind(t, math::thresholds_passed(t.upper, t.count, uniform_of<Kind>(p, words + 2 * i)));
}

#ifdef HVL_STREAMS_ISA_IS_SCALAR

template <word_kind Kind>
void thresholds(const void* parameters, const void* words, void* values, std::size_t count) noexcept {
  one_by_one<Kind>(*static_cast<const threshold_parameters*>(parameters),
                   static_cast<const word_of<Kind>*>(words), static_cast<std::int32_t*>(values), count);
}

#else

using integers = vector<std::uint32_t>;
constexpr std::size_t width = hn::MaxLanes(vector_tag<std::uint32_t>());

// As first_word, of the pairs from `words` on.
template <word_kind Kind>
HWY_INLINE integers first_words(const threshold_parameters& p, const word_of<Kind>* words) {
  const vector_tag<std::uint32_t> d;
  if constexpr (sizeof(*words) == 4) {
    const auto* const bits = reinterpret_cast<const std::uint32_t*>(words);
    const auto first = hn::ConcatEven(d, hn::LoadU(d, bits + width), hn::LoadU(d, bits));
    if constexpr (Kind == word_kind::signed32)
      return hn::Xor(first, hn::Set(d, 0x80000000u));
    else
      return hn::Mul(first, hn::Set(d, p.first_word_unit));
  } else {
    const vector_tag<std::uint64_t> dw;
    const auto half = [&](const std::uint64_t* at) HVL_STREAMS_INLINE_LAMBDA {
      const auto firsts = hn::ConcatEven(dw, hn::LoadU(dw, at + width / 2), hn::LoadU(dw, at));
      return hn::BitCast(d, hn::ShiftRight<27>(firsts));
    };
    return hn::ConcatEven(d, half(words + width), half(words));
  }
}

// a >= b of unsigned numbers, which not every instruction set compares.
HWY_INLINE auto is_at_least(integers a, integers b) {
  return hn::Eq(hn::Max(a, b), a);
}

// The lanes of a mask, one bit each.
HWY_INLINE std::uint32_t bits_of(hn::Mask<vector_tag<std::uint32_t>> m) {
#if HWY_TARGET <= HWY_AVX3
  return m.raw;
#else
  return static_cast<std::uint32_t>(_mm256_movemask_ps(_mm256_castsi256_ps(m.raw)));
#endif
}

// find(first words, passed) sets how many thresholds are passed, and returns where that is in doubt.
template <word_kind Kind, class Find>
HWY_INLINE void for_each_first_word(const threshold_parameters& p, const word_of<Kind>* words,
                                    std::int32_t* values, std::size_t count, const Find& find) {
  const vector_tag<std::int32_t> di;
  const auto origin = hn::Set(di, p.table.origin);
  const auto sign = hn::Set(di, p.table.step < 0 ? -1 : 0);
  std::size_t i = 0;
  for (; i + width <= count; i += width) {
    integers passed;
    std::uint32_t doubtful = bits_of(find(first_words<Kind>(p, words + 2 * i), passed));
    hn::StoreU(hn::Add(origin, hn::Sub(hn::Xor(hn::BitCast(di, passed), sign), sign)), di, values + i);
    for (; HWY_UNLIKELY(doubtful != 0); doubtful &= doubtful - 1) {
      const std::size_t at = i + static_cast<std::size_t>(__builtin_ctz(doubtful));
      values[at] = guided_value<Kind>(p, words + 2 * at);
    }
  }
  one_by_one<Kind>(p, words + 2 * i, values + i, count - i);
}

template <word_kind Kind>
void thresholds(const void* parameters, const void* words, void* values, std::size_t count) noexcept {
  const threshold_parameters p = *static_cast<const threshold_parameters*>(parameters);
  const auto* w = static_cast<const word_of<Kind>*>(words);
  auto* out = static_cast<std::int32_t*>(values);
  const vector_tag<std::uint32_t> d;
  const vector_tag<std::int32_t> di;
  const vqs_thresholds& t = p.table;
  const auto doubt = hn::Set(d, 2u * VQS_THRESHOLD_MARGIN - 1);
  // a comparison is all ones where it holds, which is -1
  const auto one_where = [&](auto mask) HVL_STREAMS_INLINE_LAMBDA { return hn::VecFromMask(d, mask); };
  if (t.low == nullptr)
    return one_by_one<Kind>(p, w, out, count);
  if (t.cells == nullptr) {
    const std::uint32_t few = t.count;
    return for_each_first_word<Kind>(p, w, out, count,
                                     [&](integers word, integers& passed) HVL_STREAMS_INLINE_LAMBDA {
                                       passed = hn::Zero(d);
                                       auto near = hn::FirstN(d, 0);
                                       for (std::uint32_t j = 0; j < few; ++j) {
                                         const auto low = hn::Set(d, t.low[j]);
                                         passed = hn::Sub(passed, one_where(is_at_least(word, low)));
                                         near = hn::Or(near, is_at_least(doubt, hn::Sub(word, low)));
                                       }
                                       return near;
                                     });
  }
  const auto shift = static_cast<int>(32 - t.cell_bits);
  const auto* const cells = reinterpret_cast<const std::int32_t*>(t.cells);
  const auto* const lows = reinterpret_cast<const std::int32_t*>(t.low);
  const auto one = hn::Set(d, 1);
  for_each_first_word<Kind>(p, w, out, count, [&](integers word, integers& passed) HVL_STREAMS_INLINE_LAMBDA {
    const auto cell =
        hn::BitCast(d, hn::GatherIndex(di, cells, hn::BitCast(di, hn::ShiftRightSame(word, shift))));
    const auto sure = hn::ShiftRight<1>(cell);
    const auto low = hn::BitCast(d, hn::GatherIndex(di, lows, hn::BitCast(di, sure)));
    passed = hn::Sub(sure, one_where(is_at_least(word, low)));
    return hn::Or(is_at_least(doubt, hn::Sub(word, low)), hn::Eq(hn::And(cell, one), one));
  });
}

#endif

} // namespace

transform_function thresholds_transform(word_kind kind) noexcept {
  return for_kind(kind, []<word_kind Kind>() -> transform_function { return thresholds<Kind>; });
}

} // namespace hvl::streams::HVL_STREAMS_ISA
