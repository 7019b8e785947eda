// Multinomial counts in place, a vector to a lane and outcome after outcome: what is added up at once, and of rejections the
// first attempts; what these leave open is decided together.
#include "multinomial.hpp"

#include <hvl/math/transforms/multinomial.hpp>

#include "simd/open_places.hpp"

namespace hvl::streams::HVL_STREAMS_ISA {
namespace {

void one_by_one(const multinomial_parameters& p, std::int32_t* values, std::size_t vectors) {
  for (std::size_t i = 0; i < vectors; ++i, values += p.dimension)
    math::multinomial_in_place<math::scalar_ops<double>>(p.ntrial, p.dimension, p.table, values);
}

#ifndef HVL_STREAMS_ISA_IS_SCALAR

class multinomial_chunk {
  using O = vector_ops<double>;
  static constexpr std::size_t width = vector_values<double>;

 public:
  static constexpr std::size_t most = 256;

  // A multiple of `width` vectors.
  HWY_INLINE multinomial_chunk(const multinomial_parameters& p, std::int32_t* values, std::size_t vectors)
      : p_(p), values_(values), vectors_(vectors) {
    for (std::size_t i = 0; i < vectors_; ++i) {
      trials_[i] = p_.ntrial;
      own_[2][i] = math::multinomial_word(value(i, p_.dimension - 1));
    }
  }

  HWY_INLINE void make() {
    for (std::size_t outcome = 0; outcome + 1 < p_.dimension; ++outcome)
      make(outcome);
    for (std::size_t i = 0; i < vectors_; ++i)
      value(i, p_.dimension - 1) = static_cast<std::int32_t>(trials_[i]);
  }

 private:
  HWY_INLINE std::int32_t& value(std::size_t vector, std::size_t outcome) const {
    return values_[vector * p_.dimension + outcome];
  }

  HWY_INLINE void own_words_at(std::size_t place, math::multinomial_own_words& own) const {
    for (std::size_t w = 0; w < 4; ++w)
      own[w] = own_[w][place];
  }

  static HWY_INLINE auto law_of(vector<double> trials, const math::multinomial_outcome& outcome) {
    return math::binomial_rejection_of<O>(trials, outcome.rare, 1 - outcome.rare);
  }

  HWY_INLINE void make(std::size_t number) {
    const math::multinomial_outcome outcome = math::multinomial_outcome_at(p_.table, number);
    for (std::size_t i = 0; i < vectors_; ++i) {
      own_[0][i] = math::multinomial_word(value(i, number));
      own_[1][i] = math::multinomial_word(value(i, number + 1));
      own_[3][i] = static_cast<std::uint32_t>(number);
    }
    open_places<most> open;
    for (std::size_t i = 0; i < vectors_; i += width)
      first_attempts(outcome, i, open);
    open.open(0, vectors_);
    test(outcome, open);
    for (std::uint32_t attempt = 1; !open.empty() && attempt < math::transformed_rejection_attempts;
         ++attempt)
      further_attempt(outcome, attempt, open);
    for (const std::uint32_t place : open)
      rarer_[place] = scalar_law(place, outcome).mode;
    for (std::size_t i = 0; i < vectors_; ++i) {
      const double count = math::multinomial_count<math::scalar_ops<double>>(trials_[i], rarer_[i], outcome);
      trials_[i] -= count;
      value(i, number) = static_cast<std::int32_t>(count);
    }
  }

  HWY_INLINE math::rejection_law scalar_law(std::size_t place,
                                            const math::multinomial_outcome& outcome) const {
    return math::binomial_rejection_of<math::scalar_ops<double>>(trials_[place], outcome.rare,
                                                                 1 - outcome.rare);
  }

  // Of the vectors from i on.
  HWY_INLINE void first_attempts(const math::multinomial_outcome& outcome, std::size_t i,
                                 open_places<most>& open) {
    const vector_tag<double> d;
    const auto trials = hn::Load(d, trials_ + i);
    const auto summed = O::lt(trials * O::set(outcome.rare), O::set(math::multinomial_least_rejected));
    const std::uint64_t summed_bits = bits_of<double>(summed);
    if (summed_bits != 0) {
      add_up(outcome, i, hn::IfThenElseZero(summed, trials), summed_bits);
      open.accept(i, summed_bits);
      if (summed_bits == (std::uint64_t{1} << width) - 1)
        return;
    }
    for (std::size_t k = i; k < i + width; ++k) { // of all lanes, so that they are hashed in vectors
      math::multinomial_own_words own;
      own_words_at(k, own);
      const math::multinomial_uniforms r = math::multinomial_uniforms_of(own);
      u_[k] = r.u - 0.5;
      v_[k] = r.v;
    }
    const auto proposal =
        math::rejection_proposed<O>(hn::Load(d, u_ + i), hn::Load(d, v_ + i), law_of(trials, outcome));
    hn::Store(hn::IfThenElse(summed, hn::Load(d, rarer_ + i), proposal.k), d, rarer_ + i);
    open.accept(i, bits_of<double>(proposal.squeezed));
  }

  // Trials of the lanes that are not meant are 0.
  HWY_INLINE void add_up(const math::multinomial_outcome& outcome, std::size_t i, vector<double> trials,
                         std::uint64_t meant) {
    const vector_tag<double> d;
    const auto cell = O::set(math::multinomial_cell);
    const auto coarse = to_double(hn::Load(hn::Half<vector_tag<std::uint32_t>>(), own_[0] + i)) * cell;
    const auto found = math::binomial_of_sum<O>(trials, coarse, outcome);
    hn::Store(found.k, d, rarer_ + i);
    std::uint64_t open = bits_of<double>(O::lt(found.sum, coarse + cell)) & meant;
    for (; HWY_UNLIKELY(open != 0); open &= open - 1) {
      const std::size_t place = i + static_cast<std::size_t>(__builtin_ctzll(open));
      math::multinomial_own_words own;
      own_words_at(place, own);
      rarer_[place] = math::multinomial_rarer<math::scalar_ops<double>>(trials_[place], outcome, own);
    }
  }

  HWY_INLINE void test(const math::multinomial_outcome& outcome, open_places<most>& open) {
    const vector_tag<double> d;
    alignas(vector_alignment) double trials[width] = {}, u[width] = {}, v[width] = {};
    open.decide(
        [&](std::size_t k, std::size_t place) HVL_STREAMS_INLINE_LAMBDA {
          trials[k] = trials_[place];
          u[k] = u_[place];
          v[k] = v_[place];
        },
        [&](const std::uint32_t*, std::size_t) HVL_STREAMS_INLINE_LAMBDA {
          const auto law = law_of(hn::Load(d, trials), outcome);
          const auto second = hn::Load(d, v);
          return bits_of<double>(math::rejection_accepts<O>(
              math::rejection_proposed<O>(hn::Load(d, u), second, law), second, law));
        });
  }

  // Sets the value of every open place, whether it is accepted or not.
  HWY_INLINE void further_attempt(const math::multinomial_outcome& outcome, std::uint32_t attempt,
                                  open_places<most>& open) {
    const vector_tag<double> d;
    alignas(vector_alignment) double trials[width] = {}, u[width], v[width], made[width];
    alignas(vector_alignment) std::uint32_t own[4][width] = {};
    open.decide(
        [&](std::size_t k, std::size_t place) HVL_STREAMS_INLINE_LAMBDA {
          trials[k] = trials_[place];
          for (std::size_t w = 0; w < 4; ++w)
            own[w][k] = own_[w][place];
        },
        [&](const std::uint32_t* places, std::size_t lanes) HVL_STREAMS_INLINE_LAMBDA {
          for (std::size_t k = 0; k < width; ++k) {
            const math::multinomial_own_words words = {own[0][k], own[1][k], own[2][k], own[3][k]};
            const math::rejection_uniforms r = math::rejection_attempt_uniforms(words, attempt);
            u[k] = r.u;
            v[k] = r.v;
          }
          const auto law = law_of(hn::Load(d, trials), outcome);
          const auto second = hn::Load(d, v);
          const auto proposal = math::rejection_proposed<O>(hn::Load(d, u), second, law);
          hn::Store(proposal.k, d, made);
          for (std::size_t k = 0; k < lanes; ++k)
            rarer_[places[k]] = made[k];
          return bits_of<double>(proposal.squeezed) |
                 bits_of<double>(math::rejection_accepts<O>(proposal, second, law));
        });
  }

  const multinomial_parameters& p_;
  std::int32_t* values_;
  std::size_t vectors_;
  alignas(vector_alignment) double trials_[most]; // that are left
  alignas(vector_alignment) double rarer_[most];
  // of the first attempts of rejections
  alignas(vector_alignment) double u_[most];
  alignas(vector_alignment) double v_[most];
  alignas(vector_alignment) std::uint32_t own_[4][most];
};

#endif

} // namespace

void multinomial(const void* parameters, void* values, std::size_t vectors) noexcept {
  const auto& p = *static_cast<const multinomial_parameters*>(parameters);
  auto* next = static_cast<std::int32_t*>(values);
#ifndef HVL_STREAMS_ISA_IS_SCALAR
  constexpr std::size_t width = vector_values<double>;
  for (std::size_t made; vectors >= width; vectors -= made, next += made * p.dimension) {
    made = HWY_MIN(multinomial_chunk::most, vectors / width * width);
    multinomial_chunk(p, next, made).make();
  }
#endif
  one_by_one(p, next, vectors);
}

} // namespace hvl::streams::HVL_STREAMS_ISA
