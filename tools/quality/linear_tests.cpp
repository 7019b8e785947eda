#include "tests.hpp"

#include <algorithm>
#include <bit>
#include <cmath>
#include <utility>

#include "tails.hpp"

namespace quality {
namespace {

using bit_row = std::vector<std::uint64_t>;

void set(bit_row& row, std::size_t i) {
  row[i / 64] |= std::uint64_t{1} << i % 64;
}
bool at(const bit_row& row, std::size_t i) {
  return row[i / 64] >> i % 64 & 1;
}

std::size_t rank_of(std::vector<bit_row>& rows, std::size_t columns) {
  std::size_t rank = 0;
  for (std::size_t column = 0; column < columns && rank < rows.size(); ++column) {
    const auto first = rows.begin() + static_cast<std::ptrdiff_t>(rank);
    const auto pivot = std::find_if(first, rows.end(), [=](const bit_row& row) { return at(row, column); });
    if (pivot == rows.end())
      continue;
    std::swap(*first, *pivot);
    for (std::size_t r = rank + 1; r < rows.size(); ++r)
      if (at(rows[r], column))
        for (std::size_t w = column / 64; w < rows[r].size(); ++w)
          rows[r][w] ^= rows[rank][w];
    ++rank;
  }
  return rank;
}

// Of a random square matrix to have a rank of `deficiency` less than its size, which is 24 or more: 2^(-d^2) times
// prod_{i > d} (1 - 2^-i) / prod_{i <= d} (1 - 2^-i).
double probability_of_deficiency(unsigned deficiency) {
  double p = std::exp2(-static_cast<double>(deficiency) * deficiency);
  for (unsigned i = 1; i < 64; ++i)
    p *= i > deficiency ? 1 - std::exp2(-static_cast<double>(i))
                        : 1 / (1 - std::exp2(-static_cast<double>(i)));
  return p;
}

// The length of the shortest linear feedback shift register that makes the bits (Massey, IEEE Transactions on
// Information Theory 15, 1969). Connections and bits read backwards are held in words, so that a discrepancy is a parity.
std::size_t linear_complexity(const std::vector<bool>& bits) {
  const std::size_t n = bits.size(), words = n / 64 + 2;
  bit_row connections(words), previous(words), window(words), saved;
  set(connections, 0);
  set(previous, 0);
  std::size_t length = 0, shift = 1;
  for (std::size_t i = 0; i < n; ++i) {
    const std::size_t used = std::min(words, length / 64 + 1), old = std::min(words, i / 64 + 1);
    for (std::size_t w = old; w-- > 1;)
      window[w] = window[w] << 1 | window[w - 1] >> 63;
    window[0] = window[0] << 1 | static_cast<std::uint64_t>(bits[i]);
    std::uint64_t sum = 0;
    for (std::size_t w = 0; w < used; ++w)
      sum ^= connections[w] & window[w];
    if (std::popcount(sum) % 2 == 0) {
      ++shift;
      continue;
    }
    const bool grows = 2 * length <= i;
    if (grows)
      saved = connections;
    const std::size_t whole = shift / 64, rest = shift % 64;
    for (std::size_t w = whole; w < words; ++w) {
      connections[w] ^= previous[w - whole] << rest;
      if (rest != 0 && w > whole)
        connections[w] ^= previous[w - whole - 1] >> (64 - rest);
    }
    if (grows) {
      length = i + 1 - length;
      previous = std::move(saved);
      shift = 1;
    } else {
      ++shift;
    }
  }
  return length;
}

// Of n random bits to have this complexity, times 2^n the number of sequences (Rueppel, Analysis and Design of Stream
// Ciphers, 1986).
double probability_of_complexity(std::size_t n, std::size_t complexity) {
  const auto whole = static_cast<double>(n), c = static_cast<double>(complexity);
  return std::exp2((complexity == 0 ? 0 : std::min(2 * whole - 2 * c, 2 * c - 1)) - whole);
}

} // namespace

double matrix_rank(word_source& source, std::size_t size, unsigned bits, std::size_t matrices) {
  constexpr std::size_t classes = 6;
  std::vector<std::uint64_t> counts(classes);
  std::size_t greatest = 0;
  std::vector<std::uint32_t> words((size + bits - 1) / bits);
  for (std::size_t m = 0; m < matrices; ++m) {
    std::vector<bit_row> rows(size, bit_row((size + 63) / 64));
    for (bit_row& row : rows) {
      source.fill(words);
      for (std::size_t i = 0; i < size; ++i)
        if (words[i / bits] >> (31 - i % bits) & 1)
          set(row, i);
    }
    const std::size_t deficiency = size - rank_of(rows, size);
    ++counts[std::min(deficiency, classes - 1)];
    greatest = std::max(greatest, deficiency);
  }
  std::vector<double> probabilities(classes);
  double beyond = 1;
  for (unsigned d = 0; d + 1 < classes; ++d)
    beyond -= probabilities[d] = probability_of_deficiency(d);
  probabilities[classes - 1] = beyond;
  if (matrices >= 128)
    return p_of_counts(counts, probabilities);
  double at_least = 0;
  for (unsigned d = 0; d < 32; ++d)
    at_least += d + greatest < 64 ? probability_of_deficiency(static_cast<unsigned>(greatest) + d) : 0;
  return p_of_least(std::min(at_least, 1.0), static_cast<double>(matrices));
}

double long_complexity(word_source& source, std::size_t length) {
  word_reader next(source);
  std::vector<bool> bits(length);
  for (std::size_t i = 0; i < length; ++i)
    bits[i] = next() >> 31;
  const std::size_t complexity = linear_complexity(bits);
  double lower = 0, upper = 0;
  for (std::size_t c = 0; c <= length; ++c) {
    const double p = probability_of_complexity(length, c);
    lower += c <= complexity ? p : 0;
    upper += c >= complexity ? p : 0;
  }
  return std::min(1.0, 2 * std::min(lower, upper));
}

double block_complexity(word_source& source, std::size_t length, std::size_t blocks) {
  word_reader next(source);
  std::vector<std::uint64_t> counts(length + 1);
  std::vector<double> probabilities(length + 1);
  for (std::size_t c = 0; c <= length; ++c)
    probabilities[c] = probability_of_complexity(length, c);
  std::vector<bool> bits(length);
  for (std::size_t b = 0; b < blocks; ++b) {
    for (std::size_t i = 0; i < length; ++i)
      bits[i] = next() >> 31;
    ++counts[linear_complexity(bits)];
  }
  return p_of_counts(counts, probabilities);
}

} // namespace quality
