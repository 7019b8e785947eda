#include "every_word.hpp"

#include <hvl/math/transforms.hpp>

#include <cmath>
#include <vector>

#include "hvl/streams_scaling.hpp"

namespace hvl::streams::test {
namespace {

struct word_range {
  const char* name;
  word_scale scale;
  std::uint64_t first, last, step; // of signed32: the words' bits
};
constexpr word_range ranges[] = {{"signed 32-bit", word_scale::signed32, 0, 0xFFFFFFFF, 1},
                                 {"mcg31m1", word_scale::mcg31m1, 1, 0x7FFFFFFE, 1},
                                 {"mrg32k3a", word_scale::mrg32k3a, 1, 4294967087, 1},
                                 {"mcg59", word_scale::mcg59, 1, (std::uint64_t{1} << 59) - 1, 1u << 27}};

template <class T>
T uniform(const word_range& r, std::uint64_t word, T low, T high) {
  const coefficients<T> c = uniform_coefficients(r.scale, low, high);
  if (r.scale == word_scale::signed32)
    return uniform_value<T>(static_cast<std::int32_t>(static_cast<std::uint32_t>(word)), c);
  return uniform_value<T>(word, c);
}

// A word as the methods take it: on [0, 1) and on [-1, 1).
template <class T>
struct uniforms {
  T u, v;
};

template <class T>
uniforms<T> uniforms_of(const word_range& r, std::uint64_t word) {
  return {uniform(r, word, T(0), T(1)), uniform(r, word, T(-1), T(1))};
}

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
  const auto bits = [&](std::uint64_t w) {
    return static_cast<std::uint32_t>(r.scale == word_scale::mcg59 ? w >> 27 : w);
  };
  for (const std::uint64_t other_word : {r.first, r.first + (r.last - r.first) / 2, r.last}) {
    const auto other = uniforms_of<T>(r, other_word);
    for (std::uint32_t place = 0; place < use.words; ++place) { // of the word in its group
      const auto at = [&](std::uint32_t k) { return k == place ? of_word : other; };
      std::uint32_t own[use.words];
      for (std::uint32_t k = 0; k < use.words; ++k)
        own[k] = bits(k == place ? word : other_word);
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

// As gamma, with the other word one of the extremes or the middle, in turn.
template <class See>
void betas_of(const word_range& r, std::uint64_t word, const See& see) {
  using O = math::scalar_ops<double>;
  static const math::beta_constants all[] = {
      math::beta_constants_of(1e-300, 1e-300, 0, 1), math::beta_constants_of(0.3, 1, 0, 1),
      math::beta_constants_of(0.7, 3, 0, 1), math::beta_constants_of(2.5, 1.5, 0, 1),
      math::beta_constants_of(3e6, 2e9, 0, 1)};
  const double cell = uniform_coefficients(r.scale, 0.0, 1.0).scale;
  const auto bits = [&](std::uint64_t w) {
    return static_cast<std::uint32_t>(r.scale == word_scale::mcg59 ? w >> 27 : w);
  };
  const std::uint64_t other = r.first + (r.last - r.first) / 2 * (word % 3);
  const double u = uniform(r, word, 0.0, 1.0), v = uniform(r, other, 0.0, 1.0);
  for (const auto& constants : all) {
    const double values[] = {math::beta_cheng_johnk<O>(u, v, cell, {bits(word), bits(other)}, constants),
                             math::beta_cheng_johnk<O>(v, u, cell, {bits(other), bits(word)}, constants)};
    for (const double value : values)
      see("beta", value >= 0 && value <= 1 ? value : std::nan(""));
  }
}

// The second word is one of the extremes or the middle, in turn.
template <class See>
void geometric_of(const word_range& r, std::uint64_t word, const See& see) {
  using O = math::scalar_ops<double>;
  static const double scales[] = {math::geometric_scale(1e-10), math::geometric_scale(0.5),
                                  math::geometric_scale(1)};
  const double cell = uniform_coefficients(r.scale, 0.0, 1.0).scale;
  const std::uint64_t second = r.first + (r.last - r.first) / 2 * (word % 3);
  const double u = math::refined<O>(uniform(r, word, 0.0, 1.0), uniform(r, second, 0.0, 1.0), cell);
  for (const double scale : scales) {
    const double value = math::geometric_icdf<O>(u, scale);
    see("geometric", value > -1 && value <= 2147483647 ? value : std::nan(""));
  }
}

// Either word of the pair; further attempts are made of the words' bits.
template <class See>
void poisson_of(const word_range& r, std::uint64_t word, const See& see) {
  using O = math::scalar_ops<double>;
  static const math::rejection_law laws[] = {math::poisson_rejection_of(10), math::poisson_rejection_of(3e6),
                                             math::poisson_rejection_of(3e9)};
  const double cell = uniform_coefficients(r.scale, 0.0, 1.0).scale;
  const std::uint64_t other = r.first + (r.last - r.first) / 2 * (word % 3);
  const auto bits = [&](std::uint64_t w) {
    return static_cast<std::uint32_t>(r.scale == word_scale::mcg59 ? w >> 27 : w);
  };
  const auto check = [&](double value) {
    see("poisson", value >= 0 && value <= 2147483647 ? value : std::nan(""));
  };
  const bool swapped = word % 2 != 0;
  const std::uint64_t first = swapped ? other : word, second = swapped ? word : other;
  const std::uint32_t own[2] = {bits(first), bits(second)};
  for (const math::rejection_law& law : laws)
    check(math::rejection_result<O>(math::rejection_value<O>(uniform(r, first, -0.5, 0.5),
                                                             uniform(r, second, 0.0, 1.0), cell, own, law)));
  for (const double mean : {0.0, 1e-300, 9.999, 1e300})
    check(
        math::poisson_of_mean<O>(mean, uniform(r, first, 0.0, 1.0), uniform(r, second, 0.0, 1.0), cell, own));
}

// Of any engine, as the words are integers by then; the next value's is one of the extremes or the middle, in turn.
template <class See>
void multinomial_of(const word_range& r, std::uint64_t word, const See& see) {
  using O = math::scalar_ops<double>;
  static const auto tables = [] {
    std::vector<std::vector<double>> all;
    for (const double p : {0.0, 1e-300, 0.3, 0.5, 1.0}) {
      const double both[] = {p, 1 - p};
      math::make_multinomial_table(both, 2, all.emplace_back());
    }
    return all;
  }();
  const std::uint64_t other = r.first + (r.last - r.first) / 2 * (word % 3);
  for (const std::vector<double>& table : tables)
    for (const std::int32_t trials : {0, 1, 31, 2147483647}) {
      std::int32_t values[] = {static_cast<std::int32_t>(word), static_cast<std::int32_t>(other)};
      math::multinomial_in_place<O>(trials, 2, table.data(), &values[0]);
      see("multinomial",
          values[0] >= 0 && values[1] >= 0 && values[0] + values[1] == trials ? 0.0 : std::nan(""));
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
      geometric_of(r, word, see);
      poisson_of(r, word, see);
      if (in_double) {
        if (r.scale == word_scale::signed32)
          multinomial_of(r, word, see);
        betas_of(r, word, see);
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
