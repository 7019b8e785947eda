// Poisson numbers, each of a mean of its own.
#include "poisson_v.hpp"

#include <hvl/math/transforms/poisson_v.hpp>
#include <hvl/math/transforms/words.hpp>

#include "simd/poisson_of_means.hpp"

namespace hvl::streams::HVL_STREAMS_ISA {
namespace {

constexpr std::size_t group_words = math::transformed_rejection_words.words;

#ifdef HVL_STREAMS_ISA_IS_SCALAR

template <word_kind Kind>
void poisson_v(const void* parameters, const void* words, void* values, std::size_t count) noexcept {
  const auto& p = *static_cast<const poisson_v_parameters*>(parameters);
  const auto* group = static_cast<const word_of<Kind>*>(words);
  auto* out = static_cast<std::int32_t*>(values);
  for (std::size_t i = 0; i < count; ++i, group += group_words) {
    std::uint32_t own[group_words];
    own_words(group, own);
    out[i] = math::poisson_of_mean<math::scalar_ops<double>>(
        *(*p.next_mean)++, uniform_value<double>(group[0], p.unit), uniform_value<double>(group[1], p.unit),
        p.unit.scale, own);
  }
}

#else

template <word_kind Kind>
void poisson_v(const void* parameters, const void* words, void* values, std::size_t count) noexcept {
  constexpr std::size_t most = 512, width = vector_values<double>;
  using laws_type = poisson_laws<Kind, group_words, most>;
  const vector_tag<double> d;
  const auto& p = *static_cast<const poisson_v_parameters*>(parameters);
  auto* out = static_cast<std::int32_t*>(values);
  laws_type laws;
  laws.words = static_cast<const word_of<Kind>*>(words);
  laws.cell = p.unit.scale;
  numbers_of_own_laws<most, laws_type> numbers;
  for (std::size_t made; count != 0; count -= made, out += made, laws.words += made * group_words) {
    made = HWY_MIN(most, count);
    vector<double> w[group_words];
    for (std::size_t i = 0; i < made; i += width) {
      converted_groups<Kind, double>(laws.words + i * group_words, HWY_MIN(width, made - i), w);
      hn::Store(scaled<Kind, double>(w[0], p.unit), d, laws.first + i);
      hn::Store(scaled<Kind, double>(w[1], p.unit), d, laws.second + i);
    }
    std::memcpy(numbers.parameter, *p.next_mean, made * sizeof(double));
    *p.next_mean += made;
    numbers.make(laws, made);
    store_poisson_numbers(numbers.number, out, made);
  }
}

#endif

} // namespace

transform_function poisson_v_transform(word_kind kind) noexcept {
  return for_kind(kind, []<word_kind Kind>() -> transform_function { return poisson_v<Kind>; });
}

} // namespace hvl::streams::HVL_STREAMS_ISA
