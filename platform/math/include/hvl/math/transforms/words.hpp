// How many uniforms, each of one engine word, every method takes: the one declaration that callers of the transforms
// read.
#pragma once

#include <cstdint>

namespace hvl::math {

// `values` values are made of `words` consecutive words. A last group may be cut, and still consumes all its words.
struct word_use {
  std::uint32_t words;
  std::uint32_t values;
};

inline constexpr word_use gaussian_box_muller_words{2, 1};
inline constexpr word_use gaussian_box_muller2_words{2, 2};
inline constexpr word_use gaussian_icdf_words{1, 1};
inline constexpr word_use lognormal_box_muller2_words{2, 2};
inline constexpr word_use lognormal_icdf_words{1, 1};
inline constexpr word_use exponential_icdf_words{1, 1};
inline constexpr word_use laplace_icdf_words{2, 1};
inline constexpr word_use weibull_icdf_words{1, 1};
inline constexpr word_use rayleigh_icdf_words{1, 1};
inline constexpr word_use gumbel_icdf_words{1, 1};
inline constexpr word_use cauchy_icdf_words{1, 1};
inline constexpr word_use geometric_icdf_words{2, 1};
inline constexpr word_use beta_words{2, 1};
inline constexpr word_use transformed_rejection_words{2, 1};
inline constexpr word_use negative_binomial_mixed_words{6, 1};
inline constexpr word_use thresholds_words{2, 1};
inline constexpr word_use multinomial_words{1, 1};

// float: the normal number, the acceptance, and at shapes below 1 the power. double: radius and angle of two normal
// numbers, two acceptances, two powers.
template <class T>
constexpr word_use gamma_words(bool below_one) {
  constexpr std::uint32_t values = sizeof(T) == 4 ? 1 : 2;
  return {(below_one ? 3 : 2) * values, values};
}

} // namespace hvl::math
