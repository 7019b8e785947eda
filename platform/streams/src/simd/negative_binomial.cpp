// Negative binomial numbers without a table: gamma distributed means, of which Poisson numbers are made.
#include "negative_binomial.hpp"

#include <hvl/math/transforms/negative_binomial.hpp>
#include <hvl/math/transforms/words.hpp>

#include "simd/gamma_rejects.hpp"
#include "simd/poisson_of_means.hpp"

namespace hvl::streams::HVL_STREAMS_ISA {
namespace {

constexpr std::size_t group_words = math::negative_binomial_mixed_words.words;

#ifdef HVL_STREAMS_ISA_IS_SCALAR

template <word_kind Kind>
void negative_binomial(const void* parameters, const void* words, void* values, std::size_t count) noexcept {
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

#else

template <word_kind Kind>
class negative_binomial_chunk {
  using O = vector_ops<double>;
  using word = word_of<Kind>;
  static constexpr std::size_t width = vector_values<double>;

 public:
  static constexpr std::size_t most = 512;

  HWY_INLINE negative_binomial_chunk(const negative_binomial_parameters& p, const word* words,
                                     std::int32_t* values, std::size_t count)
      : p_(p), values_(values), count_(count) {
    laws_.words = words;
    laws_.cell = p.unit.scale;
  }

  HWY_INLINE void make() {
    double* const means = numbers_.parameter;
    first_attempts(means);
    rejects_.open(0, count_);
    rejects_.make(
        p_.means,
        [&](std::size_t place, std::uint32_t attempt) HVL_STREAMS_INLINE_LAMBDA {
          std::uint32_t own[group_words];
          own_words(laws_.words + place * group_words, own);
          return math::gamma_attempt_uniforms(own, 0, attempt);
        },
        [&](std::size_t place, double mean) HVL_STREAMS_INLINE_LAMBDA { means[place] = mean; });
    if (p_.means.below_one)
      raise_to_powers(means);
    numbers_.make(laws_, count_);
    store_poisson_numbers(numbers_.number, values_, count_);
  }

 private:
  HWY_INLINE void first_attempts(double* means) {
    const vector_tag<double> d;
    const math::gamma_constants<double> constants = p_.means; // a copy stays in registers
    vector<double> w[group_words];
    const auto unit = [&](std::size_t k)
                          HVL_STREAMS_INLINE_LAMBDA { return scaled<Kind, double>(w[k], p_.unit); };
    for (std::size_t i = 0; i < count_; i += width) {
      converted_groups<Kind, double>(laws_.words + i * group_words, HWY_MIN(width, count_ - i), w);
      const auto symmetric =
          math::refined<O>(scaled<Kind, double>(w[0], p_.symmetric), unit(1), p_.symmetric.scale);
      const auto e = math::erfinv<O>(O::lesser(symmetric, O::set(1.0)));
      const auto u = unit(2);
      const auto attempt = math::gamma_squeezed<O>(e, u, constants);
      rejects_.attempted(i, e, u, attempt.accepted);
      hn::Store(attempt.core, d, means + i);
      hn::Store(unit(3), d, power_ + i);
      hn::Store(unit(4), d, laws_.first + i);
      hn::Store(unit(5), d, laws_.second + i);
    }
  }

  HWY_INLINE void raise_to_powers(double* means) {
    const vector_tag<double> d;
    for (std::size_t i = 0; i < count_; i += width)
      hn::Store(math::gamma_powered<O>(hn::Load(d, means + i), hn::Load(d, power_ + i), p_.means), d,
                means + i);
  }

  const negative_binomial_parameters& p_;
  std::int32_t* values_;
  std::size_t count_;
  gamma_rejects<double, most> rejects_;
  alignas(vector_alignment) double power_[most];
  poisson_laws<Kind, group_words, most> laws_;
  numbers_of_own_laws<most, poisson_laws<Kind, group_words, most>> numbers_;
};

template <word_kind Kind>
void negative_binomial(const void* parameters, const void* words, void* values, std::size_t count) noexcept {
  in_chunks<negative_binomial_chunk<Kind>>(*static_cast<const negative_binomial_parameters*>(parameters),
                                           static_cast<const word_of<Kind>*>(words),
                                           static_cast<std::int32_t*>(values), count, group_words);
}

#endif

} // namespace

transform_function negative_binomial_transform(word_kind kind) noexcept {
  return for_kind(kind, []<word_kind Kind>() -> transform_function { return negative_binomial<Kind>; });
}

} // namespace hvl::streams::HVL_STREAMS_ISA
