// Discrete laws by the ratios of neighbouring probabilities, P(k) / P(k - 1) = numerator(k) / denominator(k), from their
// modes outwards, and their thresholds (transforms/thresholds.hpp). For hosts, in the default floating-point environment.
//
// Weights are 1 at the mode and follow from their neighbours by one division and one product, so the one m values away is
// off by 2^-52 m in relative terms at most. They are added up from the far end, the smallest first, and divided by their
// sum.
#pragma once

#include <cstddef>
#include <cstdint>

#include "ops.hpp"

namespace hvl::math {

// What follows from the parameters of a law. Its values are origin + step k, k in [least, greatest] with the mode among
// them; a law that leans to its upper end is turned round, so that the longer tail is the one of great k.
struct law_support {
  std::int32_t origin;
  std::int32_t step;
  double mode, least, greatest;
  double variance;
};

// Up to that variance a law is inverted by a table; it then has at most some 20 thousand thresholds.
inline constexpr double greatest_variance_of_table = 1048576;

struct poisson_law {
  double mean;

  law_support support() const {
    return {0, 1, static_cast<double>(static_cast<std::int64_t>(mean)), 0, 0x1p31, mean};
  }
  double numerator(double) const { return mean; }
  double denominator(double k) const { return k; }

  static constexpr bool has_table(double mean) { return mean <= greatest_variance_of_table; }
};

// Successes in `trials`. Of the rarer outcome, so that p is at most 1/2.
struct binomial_law {
  std::int32_t trials;
  double p, rare, other;

  binomial_law(std::int32_t trial_count, double probability)
      : trials(trial_count), p(probability), rare(p <= 0.5 ? p : 1 - p), other(p <= 0.5 ? 1 - p : p) {}

  law_support support() const {
    const auto mode = static_cast<double>(static_cast<std::int64_t>((trials + 1.0) * rare));
    return {p <= 0.5 ? 0 : trials,       p <= 0.5 ? 1 : -1,   mode, 0,
            static_cast<double>(trials), trials * p * (1 - p)};
  }
  double numerator(double k) const { return (trials - k + 1) * rare; }
  double denominator(double k) const { return k * other; }

  static constexpr bool has_table(std::int32_t trials, double p) {
    return trials * p * (1 - p) <= greatest_variance_of_table;
  }
};

// Failures before success number `successes`, a real number.
struct negative_binomial_law {
  double successes, failure;

  negative_binomial_law(double a, double p) : successes(a), failure(1 - p) {}

  law_support support() const {
    const double odds = failure / (1 - failure);
    const double mode = successes > 1 ? (successes - 1) * odds : 0.0;
    return {0, 1,      static_cast<double>(static_cast<std::int64_t>(mode)),
            0, 0x1p31, successes * odds * (1 + odds)};
  }
  double numerator(double k) const { return (successes + (k - 1)) * failure; }
  double denominator(double k) const { return k; }

  // The tail is that of a geometric law, some 50 / p values long.
  static constexpr bool has_table(double a, double p) {
    return p >= 1.0 / 256 && a * (1 - p) <= greatest_variance_of_table * (p * p);
  }
};

// Marked ones in a sample of `sample` from a lot of `lot`. Of the rarer kind, so that at most half of the lot is marked.
struct hypergeometric_law {
  double lot, sample, marked;
  bool turned;

  hypergeometric_law(std::int32_t l, std::int32_t s, std::int32_t m)
      : lot(l), sample(s), marked(m > l / 2 ? l - m : m), turned(m > l / 2) {}

  law_support support() const {
    const auto mode = static_cast<std::uint64_t>(sample + 1) * static_cast<std::uint64_t>(marked + 1) /
                      static_cast<std::uint64_t>(lot + 2);
    const double unmarked_short = sample + marked - lot;
    return {turned ? static_cast<std::int32_t>(sample) : 0,
            turned ? -1 : 1,
            static_cast<double>(mode),
            unmarked_short > 0 ? unmarked_short : 0.0,
            sample < marked ? sample : marked,
            variance(lot, sample, marked)};
  }
  double numerator(double k) const { return (marked - k + 1) * (sample - k + 1); }
  double denominator(double k) const { return k * (lot - marked - sample + k); }

  static constexpr double variance(double l, double s, double m) {
    return l <= 1 ? 0.0 : s * (m / l) * ((l - m) / l) * ((l - s) / (l - 1));
  }
  static constexpr bool has_table(double l, double s, double m) {
    return variance(l, s, m) <= greatest_variance_of_table;
  }
};

// A table's origin and step; its thresholds are in the container.
struct law_values {
  std::int32_t origin;
  std::int32_t step;
};

// Replaces what `thresholds`, a std::vector of doubles, holds. Values less likely than 2^-72 of the mode's probability are
// left out where uniforms are fine, and than 2^-60 at the other end, where no uniform comes.
template <class Law, class Vector>
law_values thresholds_of(const Law& law, Vector& thresholds) {
  const law_support s = law.support();
  thresholds.clear();
  thresholds.reserve(64 + static_cast<std::size_t>(20 * scalar_ops<double>::sqrt(s.variance)));
  double k = s.mode;
  for (double w = 1; k < s.greatest; ++k) {
    w *= law.numerator(k + 1) / law.denominator(k + 1);
    if (!(w > 0x1p-72))
      break;
    thresholds.push_back(w);
  }
  const double last = k;
  for (std::size_t i = 0, j = thresholds.size(); i + 1 < j; ++i, --j) {
    const double w = thresholds[i];
    thresholds[i] = thresholds[j - 1];
    thresholds[j - 1] = w;
  }
  thresholds.push_back(1);
  double w = 1;
  for (k = s.mode; k > s.least; --k) {
    w *= law.denominator(k) / law.numerator(k);
    if (!(w > 0x1p-60))
      break;
    thresholds.push_back(w);
  }
  double sum = 0;
  for (double& t : thresholds) {
    sum += t;
    t = sum;
  }
  thresholds.pop_back();
  const double unit = 1 / sum;
  for (double& t : thresholds)
    t *= unit;
  return {s.origin + s.step * static_cast<std::int32_t>(last), -s.step};
}

} // namespace hvl::math
