// The discrete methods at a word: integers out of their range are seen as NaN.
#pragma once

#include <hvl/math/transforms.hpp>

#include <cmath>
#include <iterator>
#include <span>
#include <vector>

#include "every_word_ranges.hpp"
#include "hvl/streams_thresholds.hpp"

namespace hvl::streams::test {

inline double refined_of(const word_range& r, const word_pair& w) {
  const double cell = uniform_coefficients(r.scale, 0.0, 1.0).scale;
  return math::refined<math::scalar_ops<double>>(uniform(r, w.first, 0.0, 1.0),
                                                 uniform(r, w.second, 0.0, 1.0), cell);
}

template <class See>
void geometric_of(const word_range& r, const word_pair& w, const See& see) {
  using O = math::scalar_ops<double>;
  static const double scales[] = {math::geometric_scale(1e-10), math::geometric_scale(0.5),
                                  math::geometric_scale(1)};
  const double u = refined_of(r, w);
  for (const double scale : scales) {
    const double value = math::geometric_icdf<O>(u, scale);
    see("geometric", value > -1 && value <= 2147483647 ? value : std::nan(""));
  }
}

using rejection_laws = std::span<const math::rejection_law>;

inline rejection_laws laws_of_every_word() {
  static const math::rejection_law laws[] = {
      math::poisson_rejection_of(3e9), math::binomial_rejection_of(2147483647, 0.3),
      math::hypergeometric_rejection_of(2147483647, 1000000000, 700000000)};
  return laws;
}

// The smallest ones, which reject most, and others.
inline rejection_laws laws_of_some_words() {
  static const math::rejection_law laws[] = {
      math::poisson_rejection_of(10),
      math::poisson_rejection_of(3e6),
      math::binomial_rejection_of(20, 0.5),
      math::binomial_rejection_of(2147483647, 0.9999),
      math::hypergeometric_rejection_of(7200, 3600, 3600),
      math::hypergeometric_rejection_of(2147483647, 2147000000, 1000000000)};
  return laws;
}

// Further attempts are made of the words' bits.
template <class See>
void rejected_of(const word_range& r, const word_pair& w, const See& see, rejection_laws laws) {
  using O = math::scalar_ops<double>;
  const double cell = uniform_coefficients(r.scale, 0.0, 1.0).scale;
  const double u = uniform(r, w.first, -0.5, 0.5), v = uniform(r, w.second, 0.0, 1.0);
  for (const math::rejection_law& law : laws) {
    const double k = math::rejection_value<O>(u, v, cell, w.own, law);
    see("transformed rejection", k >= law.least && k <= law.greatest ? k : std::nan(""));
  }
}

template <class See>
void poisson_v_of(const word_range& r, const word_pair& w, const See& see) {
  using O = math::scalar_ops<double>;
  const double cell = uniform_coefficients(r.scale, 0.0, 1.0).scale;
  for (const double mean : {0.0, 1e-300, 9.999, 1e300}) {
    const double value = math::poisson_of_mean<O>(mean, uniform(r, w.first, 0.0, 1.0),
                                                  uniform(r, w.second, 0.0, 1.0), cell, w.own);
    see("poisson_v", value >= 0 && value <= 2147483647 ? value : std::nan(""));
  }
}

// By thresholds: of laws whose values ascend and descend from where they begin.
template <class See>
void inverted_of(const word_range& r, const word_pair& w, const See& see) {
  static const law_thresholds tables[] = {law_thresholds(math::binomial_law(20, 0.3)),
                                          law_thresholds(math::binomial_law(1000, 0.9)),
                                          law_thresholds(math::negative_binomial_law(2.5, 0.3))};
  static constexpr double greatest[] = {20, 1000, 2147483647};
  const double u = refined_of(r, w);
  for (std::size_t i = 0; i < std::size(tables); ++i) {
    const vqs_thresholds t = tables[i].view();
    const auto passed = static_cast<std::int64_t>(math::thresholds_passed(t.upper, t.count, u));
    const auto value = static_cast<double>(t.origin + t.step * passed);
    see("thresholds", value >= 0 && value <= greatest[i] ? value : std::nan(""));
  }
}

// The word in each of the six places in turn, the others one of the extremes or the middle.
template <class See>
void negative_binomial_of(const word_range& r, std::uint64_t word, const See& see) {
  using O = math::scalar_ops<double>;
  static const math::gamma_constants<double> means[] = {
      math::negative_binomial_means(1e-3, 1e-300), math::negative_binomial_means(0.7, 1e-4),
      math::negative_binomial_means(2.5, 1e-3), math::negative_binomial_means(1e300, 0.5)};
  double uniforms[6], cells[6];
  std::uint32_t own[6];
  for (std::size_t k = 0; k < 6; ++k) {
    const std::uint64_t at = k == word % 6 ? word : r.first + (r.last - r.first) / 2 * ((word / 6 + k) % 3);
    const double low = k == 0 ? -1 : 0;
    uniforms[k] = uniform(r, at, low, 1.0);
    cells[k] = uniform_coefficients(r.scale, low, 1.0).scale;
    own[k] = bits(r, at);
  }
  for (const auto& of_means : means) {
    const double value = math::negative_binomial_mixed<O>(uniforms, cells, own, of_means);
    see("negative_binomial", value >= 0 && value <= 2147483647 ? value : std::nan(""));
  }
}

// Of any engine, as the words are integers by then.
template <class See>
void multinomial_of(const word_pair& w, const See& see) {
  using O = math::scalar_ops<double>;
  static const auto tables = [] {
    std::vector<std::vector<double>> all;
    for (const double p : {0.0, 1e-300, 0.3, 0.5, 1.0}) {
      const double both[] = {p, 1 - p};
      math::make_multinomial_table(both, 2, all.emplace_back());
    }
    return all;
  }();
  for (const std::vector<double>& table : tables)
    for (const std::int32_t trials : {0, 1, 31, 2147483647}) {
      std::int32_t values[] = {static_cast<std::int32_t>(w.own[0]), static_cast<std::int32_t>(w.own[1])};
      math::multinomial_in_place<O>(trials, 2, table.data(), &values[0]);
      see("multinomial",
          values[0] >= 0 && values[1] >= 0 && values[0] + values[1] == trials ? 0.0 : std::nan(""));
    }
}

} // namespace hvl::streams::test
