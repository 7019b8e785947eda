#include "every_word.hpp"

#include <hvl/math/transforms.hpp>

#include <cmath>
#include <vector>

#include "every_word_discrete.hpp"

namespace hvl::streams::test {
namespace {

// Calls see(method, value) for each value made of the uniforms; where two are taken, the other is each of the extremes.
template <class T, class See>
void values_of(const word_range& r, uniforms<T> of_word, const See& see) {
  using O = math::scalar_ops<T>;
  const auto [u, v] = of_word;
  const T icdf_scale = math::icdf_scale(T(1));
  for (const std::uint64_t other_word : {r.first, r.first + (r.last - r.first) / 2, r.last}) {
    const T other = uniform(r, other_word, T(0), T(1));
    T first, second;
    for (const bool swapped : {false, true}) {
      math::gaussian_box_muller2<O>(swapped ? other : u, swapped ? u : other, T(0), T(1), first, second);
      see("gaussian_box_muller2, first", first);
      see("gaussian_box_muller2, second", second);
      math::lognormal_box_muller2<O>(swapped ? other : u, swapped ? u : other, T(0), T(1), T(0), T(1), first,
                                     second);
      see("lognormal_box_muller2, first", first);
      see("lognormal_box_muller2, second", second);
      see("laplace", math::laplace_icdf<O>(swapped ? other : u, swapped ? u : other, T(0), T(1)));
    }
  }
  see("gaussian_icdf", math::gaussian_icdf<O>(v, T(0), icdf_scale));
  see("lognormal_icdf", math::lognormal_icdf<O>(v, T(0), icdf_scale, T(0), T(1)));
  see("exponential", math::exponential_icdf<O>(u, T(0), T(1)));
  for (const T alpha : {T(0.25), T(1), T(40)})
    see("weibull", math::weibull_icdf<O>(u, math::weibull_exponent(alpha), T(0), T(1)));
  see("rayleigh", math::rayleigh_icdf<O>(u, T(0), T(1)));
  see("gumbel", math::gumbel_icdf<O>(u, T(0), T(1)));
}

// Further attempts are made of the words' bits: for a few of them.
template <class T, bool BelowOne, class See>
void gamma_of(const word_range& r, std::uint64_t word, uniforms<T> of_word, T shape, const See& see) {
  using O = math::scalar_ops<T>;
  constexpr math::word_use use = math::gamma_words<T>(BelowOne);
  const auto constants = math::gamma_constants_of<T>(shape, T(0), T(1));
  const T cell = uniform_coefficients(r.scale, T(0), T(1)).scale;
  for (const std::uint64_t other_word : {r.first, r.first + (r.last - r.first) / 2, r.last}) {
    const auto other = uniforms_of<T>(r, other_word);
    for (std::uint32_t place = 0; place < use.words; ++place) { // of the word in its group
      const auto at = [&](std::uint32_t k) { return k == place ? of_word : other; };
      std::uint32_t own[use.words];
      for (std::uint32_t k = 0; k < use.words; ++k)
        own[k] = bits(r, k == place ? word : other_word);
      T e[2];
      if constexpr (sizeof(T) == 4) {
        e[0] = math::erfinv<O>(at(0).v);
      } else {
        const auto pair = math::gamma_normal_pair<O>(at(0).u, at(1).u, cell);
        e[0] = pair.sine;
        e[1] = pair.cosine;
      }
      for (std::uint32_t k = 0; k < use.values; ++k)
        see("gamma", math::gamma_marsaglia<O>(e[k], at(use.values + k).u, at(use.words - use.values + k).u,
                                              own, k, constants));
    }
  }
}

template <class T, class See>
void gammas_of(const word_range& r, std::uint64_t word, uniforms<T> of_word, const See& see) {
  gamma_of<T, true>(r, word, of_word, T(0.3), see);
  gamma_of<T, false>(r, word, of_word, T(1), see);
  gamma_of<T, false>(r, word, of_word, T(100), see);
}

template <class See>
void betas_of(const word_range& r, const word_pair& w, const See& see) {
  using O = math::scalar_ops<double>;
  static const math::beta_constants all[] = {
      math::beta_constants_of(1e-300, 1e-300, 0, 1), math::beta_constants_of(0.3, 1, 0, 1),
      math::beta_constants_of(0.7, 3, 0, 1), math::beta_constants_of(2.5, 1.5, 0, 1),
      math::beta_constants_of(3e6, 2e9, 0, 1)};
  const double cell = uniform_coefficients(r.scale, 0.0, 1.0).scale;
  for (const auto& constants : all) {
    const double value = math::beta_cheng_johnk<O>(uniform(r, w.first, 0.0, 1.0),
                                                   uniform(r, w.second, 0.0, 1.0), cell, w.own, constants);
    see("beta", value >= 0 && value <= 1 ? value : std::nan(""));
  }
}

template <class See>
void cauchy_of(const word_range& r, std::uint64_t word, const See& see) {
  const double angle = uniform(r, word, math::cauchy_low, math::cauchy_high);
  see("cauchy", math::cauchy_icdf<math::scalar_ops<double>>(angle, 0.0, 1.0));
}

} // namespace

word_report try_words(std::uint64_t stride, std::uint64_t double_stride) {
  word_report report;
  for (const word_range& r : ranges) {
    uniforms<float> last{2, 2}; // many words in a row round to the same floats
    const auto try_word = [&](std::uint64_t word, bool in_double) {
      ++report.tried;
      const auto see = [&](const char* method, auto value) {
        if (!std::isfinite(static_cast<float>(value)) && report.not_finite.size() < 20)
          report.not_finite.push_back(std::string(method) + (sizeof value == 4 ? ", float, " : ", double, ") +
                                      r.name + " word " + std::to_string(word));
      };
      const auto now = uniforms_of<float>(r, word);
      if (now.u != last.u || now.v != last.v) {
        values_of(r, now, see);
        gammas_of(r, word, now, see);
      }
      last = now;
      cauchy_of(r, word, see);
      const word_pair pair = pair_of(r, word, word / r.step % other_words);
      geometric_of(r, pair, see);
      poisson_v_of(r, pair, see);
      rejected_of(r, pair, see, laws_of_every_word());
      if (in_double) {
        for (std::uint64_t other = 0; other < other_words; ++other)
          for (const word_pair& w : {pair_of(r, word, other), swapped(pair_of(r, word, other))}) {
            poisson_v_of(r, w, see);
            rejected_of(r, w, see, laws_of_some_words());
            inverted_of(r, w, see);
            betas_of(r, w, see);
            if (r.scale == word_scale::signed32)
              multinomial_of(w, see);
          }
        negative_binomial_of(r, word, see);
        values_of(r, uniforms_of<double>(r, word), see);
        gammas_of(r, word, uniforms_of<double>(r, word), see);
      }
    };
    std::uint64_t until_double = 0;
    for (std::uint64_t word = r.first; word < r.last; word += stride * r.step) {
      const bool in_double = until_double == 0;
      until_double = in_double ? double_stride - 1 : until_double - 1;
      try_word(word, in_double);
    }
    try_word(r.last, true);
    if (r.scale == word_scale::signed32) // both ends of the interval are in the middle of the unsigned words
      for (const std::uint64_t word : {0x7FFFFF00u, 0x7FFFFFFFu, 0x80000000u, 0x80000001u, 0x800000FFu})
        try_word(word, true);
  }
  return report;
}

} // namespace hvl::streams::test
