#include "tests.hpp"

#include <algorithm>
#include <bit>
#include <cmath>

#include "tails.hpp"

namespace quality {
namespace {

// Twice the weight less its mean: an integer of mean 0 and of the words' bits as its variance.
std::vector<std::int16_t> centred_weights(word_source& source, std::size_t n) {
  std::vector<std::uint32_t> words(n);
  source.fill(words);
  std::vector<std::int16_t> weights(n);
  std::transform(words.begin(), words.end(), weights.begin(),
                 [bits = static_cast<int>(source.bits())](std::uint32_t w) {
                   return static_cast<std::int16_t>(2 * std::popcount(w) - bits);
                 });
  return weights;
}

} // namespace

double hamming_pairs(word_source& source, std::size_t pairs) {
  word_reader next(source);
  const std::size_t classes = source.bits() + 1;
  std::vector<double> of_weight(classes);
  double p = std::ldexp(1, -static_cast<int>(source.bits()));
  for (std::size_t w = 0; w < classes; ++w) {
    of_weight[w] = p;
    p = p * static_cast<double>(source.bits() - w) / static_cast<double>(w + 1);
  }
  std::vector<std::uint64_t> counts(classes * classes);
  std::vector<double> probabilities(counts.size());
  for (std::size_t i = 0; i < counts.size(); ++i)
    probabilities[i] = of_weight[i / classes] * of_weight[i % classes];
  for (std::size_t i = 0; i < pairs; ++i) {
    const auto first = static_cast<std::size_t>(std::popcount(next()));
    ++counts[first * classes + static_cast<std::size_t>(std::popcount(next()))];
  }
  return p_of_counts(counts, probabilities);
}

double hamming_lags(word_source& source, std::size_t n, std::size_t lags) {
  const auto x = centred_weights(source, n + lags);
  std::int64_t greatest = 0;
  for (std::size_t lag = 1; lag <= lags; ++lag) {
    std::int64_t sum = 0;
    for (std::size_t i = 0; i < n; ++i)
      sum += std::int32_t{x[i]} * x[i + lag];
    greatest = std::max(greatest, std::abs(sum));
  }
  const double deviation = std::sqrt(static_cast<double>(n)) * source.bits();
  return p_of_least(p_of_normal(static_cast<double>(greatest) / deviation), static_cast<double>(lags));
}

double hamming_triples(word_source& source, std::size_t n, std::size_t lags) {
  const auto x = centred_weights(source, n + lags);
  std::vector<std::int16_t> product(n);
  std::int64_t greatest = 0;
  for (std::size_t first = 1; first <= lags; ++first) {
    for (std::size_t i = 0; i < n; ++i)
      product[i] = static_cast<std::int16_t>(x[i] * x[i + first]);
    for (std::size_t second = first + 1; second <= lags; ++second) {
      std::int64_t sum = 0;
      for (std::size_t i = 0; i < n; ++i)
        sum += std::int32_t{product[i]} * x[i + second];
      greatest = std::max(greatest, std::abs(sum));
    }
  }
  const double deviation = std::sqrt(static_cast<double>(n)) * std::pow(source.bits(), 1.5);
  const auto tries = static_cast<double>(lags * (lags - 1) / 2);
  return p_of_least(p_of_normal(static_cast<double>(greatest) / deviation), tries);
}

} // namespace quality
