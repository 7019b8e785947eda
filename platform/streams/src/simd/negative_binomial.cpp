// Negative binomial numbers without a table, one by one.
#include "negative_binomial.hpp"

#include <hvl/math/transforms/negative_binomial.hpp>
#include <hvl/math/transforms/words.hpp>

#include "simd/word_groups.hpp"

namespace hvl::streams::HVL_STREAMS_ISA {
namespace {

template <word_kind Kind>
void negative_binomial(const void* parameters, const void* words, void* values, std::size_t count) noexcept {
  constexpr std::size_t group_words = math::negative_binomial_mixed_words.words;
  const auto& p = *static_cast<const negative_binomial_parameters*>(parameters);
  const auto* group = static_cast<const word_of<Kind>*>(words);
  auto* out = static_cast<std::int32_t*>(values);
  for (std::size_t i = 0; i < count; ++i, group += group_words) {
    double uniforms[group_words], cells[group_words];
    for (std::size_t k = 0; k < group_words; ++k) {
      const coefficients<double>& scaling = k == 0 ? p.symmetric : p.unit;
      uniforms[k] = uniform_value<double>(group[k], scaling);
      cells[k] = scaling.scale;
    }
    std::uint32_t own[group_words];
    own_words(group, own);
    out[i] = math::negative_binomial_mixed<math::scalar_ops<double>>(uniforms, cells, own, p.means);
  }
}

} // namespace

transform_function negative_binomial_transform(word_kind kind) noexcept {
  switch (kind) {
  case word_kind::signed32:
    return negative_binomial<word_kind::signed32>;
  case word_kind::unsigned32:
    return negative_binomial<word_kind::unsigned32>;
  case word_kind::unsigned64:
    return negative_binomial<word_kind::unsigned64>;
  }
  return nullptr;
}

} // namespace hvl::streams::HVL_STREAMS_ISA
