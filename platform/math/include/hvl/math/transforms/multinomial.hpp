// The multinomial distribution by the conditional method (C. S. Davis, The computer generation of multinomial random variates,
// 1993): of the trials that earlier outcomes have left, each outcome takes a binomial number.
//
// A value has a word of its own. The word is the upper 32 bits of the uniform behind a binomial number; what else that takes
// is a hash of the word, the next value's and the vector's last, which makes no number itself.
#pragma once

#include <cstddef>

#include "added_up.hpp"
#include "binomial_rejection.hpp"
#include "words.hpp"

namespace hvl::math {

// A trial that no earlier outcome has taken takes this outcome, or a later one: probabilities of the rarer.
struct multinomial_outcome {
  double rare;
  double odds;      // of it, rare / (1 - rare)
  double log_other; // ln(1 - rare)
  double turned;    // 1 where a later one is rarer, else 0
};

// Numbers of an outcome in a table. Those of the last outcome are not read.
inline constexpr std::size_t multinomial_outcome_numbers = 4;

HVL_MATH_INLINE multinomial_outcome multinomial_outcome_at(const double* table, std::size_t outcome) {
  const double* const numbers = table + multinomial_outcome_numbers * outcome;
  return {numbers[0], numbers[1], numbers[2], numbers[3]};
}

// Replaces what `table`, a std::vector of doubles, holds. Behind the last outcome that is possible nothing is left to take.
// For hosts, in the default floating-point environment.
template <class Vector>
void make_multinomial_table(const double* p, std::size_t outcomes, Vector& table) {
  table.assign(multinomial_outcome_numbers * outcomes, 0.0);
  double later = p[outcomes - 1];
  for (std::size_t i = outcomes - 1; i-- > 0;) {
    const double all = p[i] + later;
    if (all > 0) {
      const bool turned = later < p[i];
      const double rare = (turned ? later : p[i]) / all;
      double* const numbers = table.data() + multinomial_outcome_numbers * i;
      numbers[0] = rare;
      numbers[1] = rare / (1 - rare);
      numbers[2] = log1p<scalar_ops<double>>(-rare);
      numbers[3] = turned ? 1 : 0;
    }
    later = all;
  }
}

// From that mean on a binomial number is made by rejection, which needs 10 and is dearer below.
inline constexpr double multinomial_least_rejected = 16;

// How many of the trials, by adding up probabilities from 0 on. u lies in [0, 1]; trials * rare is below the least mean of
// rejection. What has less than 2^-53 of the probability is not reached.
template <class O>
HVL_MATH_INLINE detail::added_up_number<O> binomial_added_up(typename O::value trials, typename O::value u,
                                                             const multinomial_outcome& outcome) {
  return detail::added_up<O>(
      exp<O>(trials * O::set(outcome.log_other)),
      u, [&](typename O::value k, double next) __attribute__((always_inline)) {
        return (trials - k) * O::set(outcome.odds / next);
      });
}

// A value's word as `own` has it, as a uniform on [0, 1] in steps of 2^-32.
inline constexpr double multinomial_cell = 0x1p-32;

// Own words of outcome i: its value's word, the next value's, the vector's last, and i.
using multinomial_own_words = std::uint32_t[4];

// What the words of an outcome give: its uniform, refined, and the second one of the first attempt of a rejection.
struct multinomial_uniforms {
  double u;
  double v;
};

HVL_MATH_INLINE constexpr multinomial_uniforms multinomial_uniforms_of(const multinomial_own_words& own) {
  const philox_block hash = attempt_words(own, 0, transformed_rejection_hash_key);
  return {(static_cast<double>(own[0]) + attempt_uniform(hash.word[0])) * multinomial_cell,
          rejection_attempt_v(hash)};
}

// How many of the trials have the rarer outcome, for a policy of one number.
template <class O>
HVL_MATH_INLINE double multinomial_rarer(double trials, const multinomial_outcome& outcome,
                                         const multinomial_own_words& own) {
  if (trials * outcome.rare < multinomial_least_rejected) {
    const double coarse = static_cast<double>(own[0]) * multinomial_cell;
    const auto found = binomial_added_up<O>(trials, coarse, outcome);
    if (!(found.sum < coarse + multinomial_cell))
      return found.k;
    return binomial_added_up<O>(trials, multinomial_uniforms_of(own).u, outcome).k;
  }
  const rejection_law law = binomial_rejection_of<O>(trials, outcome.rare, 1 - outcome.rare);
  const multinomial_uniforms r = multinomial_uniforms_of(own);
  const rejection_proposal<O> first = rejection_proposed<O>(r.u - 0.5, r.v, law);
  return first.squeezed || rejection_accepts<O>(first, r.v, law) ? first.k : rejection_further<O>(own, law);
}

// How many of the trials an outcome takes, where the rarer one takes `rarer`.
template <class O>
HVL_MATH_INLINE typename O::value multinomial_count(typename O::value trials, typename O::value rarer,
                                                    const multinomial_outcome& outcome) {
  return outcome.turned != 0 ? trials - rarer : rarer;
}

// A value's word: where it lies above the least integer.
HVL_MATH_INLINE constexpr std::uint32_t multinomial_word(std::int32_t value) {
  return static_cast<std::uint32_t>(value) ^ 0x80000000u;
}

// One vector in place, for a policy of one number: integers uniform on [-2^31, 2^31) become the counts.
template <class O, class Vector>
HVL_MATH_INLINE void multinomial_in_place(std::int32_t ntrial, std::size_t outcomes, const double* table,
                                          const Vector& values) {
  const std::uint32_t last = multinomial_word(values[outcomes - 1]);
  double trials = ntrial;
  for (std::size_t i = 0; i + 1 < outcomes; ++i) {
    const multinomial_outcome outcome = multinomial_outcome_at(table, i);
    const multinomial_own_words own = {multinomial_word(values[i]), multinomial_word(values[i + 1]), last,
                                       static_cast<std::uint32_t>(i)};
    const double count = multinomial_count<O>(trials, multinomial_rarer<O>(trials, outcome, own), outcome);
    values[i] = static_cast<std::int32_t>(count);
    trials -= count;
  }
  values[outcomes - 1] = static_cast<std::int32_t>(trials);
}

} // namespace hvl::math
