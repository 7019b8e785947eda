// The geometric distribution.
#include "geometric.hpp"

#include <hvl/math/transforms/geometric.hpp>

#include "simd/value_loops.hpp"

namespace hvl::streams::HVL_STREAMS_ISA {
namespace {

// In double; truncation is the floor of a number that is not negative.
template <word_kind Kind>
void in_double(const geometric_parameters& p, const word_of<Kind>* words, std::int32_t* values,
               std::size_t count) noexcept {
  for_each_of_pair<double>(
      values, count, unit_loader<Kind, double>(words, p.unit),
      [&]<class O>(typename O::value first, typename O::value second) HVL_STREAMS_INLINE_LAMBDA {
        return math::geometric_icdf<O>(math::refined<O>(first, second, p.unit.scale), p.scale);
      });
}

#ifdef HVL_STREAMS_ISA_IS_SCALAR

template <word_kind Kind>
void geometric(const void* parameters, const void* words, void* values, std::size_t count) noexcept {
  in_double<Kind>(*static_cast<const geometric_parameters*>(parameters),
                  static_cast<const word_of<Kind>*>(words), static_cast<std::int32_t*>(values), count);
}

#else

// The integer part, where it is one of 32 bits.
HWY_INLINE vector<std::int32_t> integer_part(vector<float> v) {
#if HWY_TARGET <= HWY_AVX3
  return vector<std::int32_t>{_mm512_cvttps_epi32(v.raw)};
#else
  return vector<std::int32_t>{_mm256_cvttps_epi32(v.raw)};
#endif
}

// The first words of the pairs from `words` on as numbers, signed ones moved up by 2^31.
template <word_kind Kind>
HWY_INLINE vector<float> first_words(const word_of<Kind>* words) {
  constexpr std::size_t width = vector_values<float>;
  if constexpr (sizeof(*words) == 4) {
    const vector_tag<std::uint32_t> d;
    const auto* const bits = reinterpret_cast<const std::uint32_t*>(words);
    const auto first = hn::ConcatEven(d, hn::LoadU(d, bits + width), hn::LoadU(d, bits));
    return to_float(Kind == word_kind::signed32 ? hn::Xor(first, hn::Set(d, 0x80000000u)) : first);
  } else {
    const word_loader<Kind, float> load(words, {});
    return hn::ConcatEven(vector_tag<float>(), load.converted(width), load.converted(0));
  }
}

// In float, and a vector with a value that this leaves in doubt again in double.
template <word_kind Kind>
void geometric(const void* parameters, const void* words, void* values, std::size_t count) noexcept {
  const auto& p = *static_cast<const geometric_parameters*>(parameters);
  const auto* w = static_cast<const word_of<Kind>*>(words);
  auto* out = static_cast<std::int32_t*>(values);
  if (-p.scale > math::geometric_greatest_scale_for_float)
    return in_double<Kind>(p, w, out, count);

  using O = two_vectors_ops<float>;
  constexpr std::size_t width = vector_values<float>;
  const vector_tag<float> d;
  const math::geometric_margins margins = math::geometric_margins_of(p.scale);
  const auto scale = O::set(static_cast<float>(p.unit.scale));
  std::size_t i = 0;
  for (; i + 2 * width <= count; i += 2 * width) {
    const O::value first = {first_words<Kind>(w + 2 * i), first_words<Kind>(w + 2 * (i + width))};
    const auto bounds = math::geometric_bounds_of<O>(first * scale, margins);
    const auto decide = [&](std::size_t at, vector<float> word, vector<float> low,
                            vector<float> high) HVL_STREAMS_INLINE_LAMBDA {
      const auto least = integer_part(low);
      hn::StoreU(least, vector_tag<std::int32_t>(), out + at);
      const auto doubtful = hn::Or(hn::Lt(word, hn::Set(d, math::geometric_least_word)),
                                   hn::RebindMask(d, hn::Ne(least, integer_part(high))));
      if (HWY_UNLIKELY(!hn::AllFalse(d, doubtful)))
        in_double<Kind>(p, w + 2 * at, out + at, width);
    };
    decide(i, first.a, bounds.least.a, bounds.greatest.a);
    decide(i + width, first.b, bounds.least.b, bounds.greatest.b);
  }
  in_double<Kind>(p, w + 2 * i, out + i, count - i);
}

#endif

} // namespace

transform_function geometric_transform(word_kind kind) noexcept {
  return for_kind(kind, []<word_kind Kind>() -> transform_function { return geometric<Kind>; });
}

} // namespace hvl::streams::HVL_STREAMS_ISA
