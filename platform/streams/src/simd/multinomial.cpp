// Multinomial counts in place, a vector to a lane and outcome after outcome.
#include "multinomial.hpp"

#include <hvl/math/transforms/multinomial.hpp>

#include "simd/own_laws.hpp"

namespace hvl::streams::HVL_STREAMS_ISA {
namespace {

void one_by_one(const multinomial_parameters& p, std::int32_t* values, std::size_t vectors) {
  for (std::size_t i = 0; i < vectors; ++i, values += p.dimension)
    math::multinomial_in_place<math::scalar_ops<double>>(p.ntrial, p.dimension, p.table, values);
}

#ifndef HVL_STREAMS_ISA_IS_SCALAR

constexpr std::size_t most_vectors = 256;

// How many of the trials that vectors have left, the parameters, take the rarer of one outcome and later ones.
struct outcome_laws {
  using O = vector_ops<double>;
  using own_words = math::multinomial_own_words;

  math::multinomial_outcome outcome;
  alignas(vector_alignment) std::uint32_t own[4][most_vectors];

  HWY_INLINE O::mask is_added_up(vector<double> trials) const {
    return O::lt(trials * O::set(outcome.rare), O::set(math::multinomial_least_rejected));
  }

  HWY_INLINE vector<double> added_up(std::size_t i, vector<double> trials, std::uint64_t meant) const {
    const vector_tag<double> d;
    const auto cell = O::set(math::multinomial_cell);
    const auto coarse = to_double(hn::Load(hn::Half<vector_tag<std::uint32_t>>(), own[0] + i)) * cell;
    const auto found = math::binomial_added_up<O>(trials, coarse, outcome);
    std::uint64_t undecided = bits_of<double>(O::lt(found.sum, coarse + cell)) & meant;
    if (HWY_LIKELY(undecided == 0))
      return found.k;
    constexpr std::size_t width = vector_values<double>;
    alignas(vector_alignment) double numbers[width], trials_of[width];
    hn::Store(found.k, d, numbers);
    hn::Store(trials, d, trials_of);
    for (; undecided != 0; undecided &= undecided - 1) {
      const auto k = static_cast<std::size_t>(__builtin_ctzll(undecided));
      own_words words;
      own_words_at(i + k, words);
      numbers[k] = math::multinomial_rarer<math::scalar_ops<double>>(trials_of[k], outcome, words);
    }
    return hn::Load(d, numbers);
  }

  HWY_INLINE first_uniforms<vector<double>> first_attempts(std::size_t i) const {
    const vector_tag<double> d;
    constexpr std::size_t width = vector_values<double>;
    alignas(vector_alignment) double u[width], v[width];
    for (std::size_t k = 0; k < width; ++k) {
      own_words words;
      own_words_at(i + k, words);
      const math::multinomial_uniforms r = math::multinomial_uniforms_of(words);
      u[k] = r.u - 0.5;
      v[k] = r.v;
    }
    return {hn::Load(d, u), hn::Load(d, v)};
  }

  static HWY_INLINE double second_uniform(std::size_t, double v) { return v; }

  HWY_INLINE void own_words_at(std::size_t place, own_words& words) const {
    for (std::size_t w = 0; w < 4; ++w)
      words[w] = own[w][place];
  }

  template <class P>
  HWY_INLINE math::rejection_law_of<typename P::value> law_of(typename P::value trials) const {
    return math::binomial_rejection_of<P>(trials, outcome.rare, 1 - outcome.rare);
  }
};

class multinomial_chunk {
 public:
  HWY_INLINE multinomial_chunk(const multinomial_parameters& p, std::int32_t* values, std::size_t vectors)
      : p_(p), values_(values), vectors_(vectors) {
    for (std::size_t i = 0; i < vectors_; ++i) {
      rarer_.parameter[i] = p_.ntrial;
      laws_.own[2][i] = math::multinomial_word(value(i, p_.dimension - 1));
    }
  }

  HWY_INLINE void make() {
    for (std::size_t outcome = 0; outcome + 1 < p_.dimension; ++outcome)
      make(outcome);
    for (std::size_t i = 0; i < vectors_; ++i)
      value(i, p_.dimension - 1) = static_cast<std::int32_t>(rarer_.parameter[i]);
  }

 private:
  HWY_INLINE std::int32_t& value(std::size_t vector, std::size_t outcome) const {
    return values_[vector * p_.dimension + outcome];
  }

  HWY_INLINE void make(std::size_t number) {
    laws_.outcome = math::multinomial_outcome_at(p_.table, number);
    for (std::size_t i = 0; i < vectors_; ++i) {
      laws_.own[0][i] = math::multinomial_word(value(i, number));
      laws_.own[1][i] = math::multinomial_word(value(i, number + 1));
      laws_.own[3][i] = static_cast<std::uint32_t>(number);
    }
    rarer_.make(laws_, vectors_);
    for (std::size_t i = 0; i < vectors_; ++i) {
      const double count = math::multinomial_count<math::scalar_ops<double>>(rarer_.parameter[i],
                                                                             rarer_.number[i], laws_.outcome);
      rarer_.parameter[i] -= count;
      value(i, number) = static_cast<std::int32_t>(count);
    }
  }

  const multinomial_parameters& p_;
  std::int32_t* values_;
  std::size_t vectors_;
  outcome_laws laws_;
  numbers_of_own_laws<most_vectors, outcome_laws> rarer_;
};

#endif

} // namespace

void multinomial(const void* parameters, void* values, std::size_t vectors) noexcept {
  const auto& p = *static_cast<const multinomial_parameters*>(parameters);
  auto* next = static_cast<std::int32_t*>(values);
#ifndef HVL_STREAMS_ISA_IS_SCALAR
  constexpr std::size_t width = vector_values<double>;
  for (std::size_t made; vectors >= width; vectors -= made, next += made * p.dimension) {
    made = HWY_MIN(most_vectors, vectors / width * width);
    multinomial_chunk(p, next, made).make();
  }
#endif
  one_by_one(p, next, vectors);
}

} // namespace hvl::streams::HVL_STREAMS_ISA
