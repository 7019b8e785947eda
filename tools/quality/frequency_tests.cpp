#include "tests.hpp"

#include <algorithm>
#include <cmath>

#include "tails.hpp"

namespace quality {

double serial(word_source& source, std::size_t tuples, unsigned dimensions, unsigned bits) {
  word_reader next(source);
  std::vector<std::uint64_t> counts(std::size_t{1} << dimensions * bits);
  for (std::size_t i = 0; i < tuples; ++i) {
    std::size_t cell = 0;
    for (unsigned d = 0; d < dimensions; ++d)
      cell = cell << bits | next() >> (32 - bits);
    ++counts[cell];
  }
  const std::vector<double> even(counts.size(), 1 / static_cast<double>(counts.size()));
  return p_of_counts(counts, even);
}

double gaps(word_source& source, std::size_t count, unsigned bits) {
  word_reader next(source);
  const double hit = std::ldexp(1, -static_cast<int>(bits));
  // The last length stands for all from it on; beyond it some ten gaps are expected.
  const auto longest = static_cast<std::size_t>(std::log(10 / static_cast<double>(count)) / std::log1p(-hit));
  std::vector<std::uint64_t> counts(longest + 1);
  std::vector<double> probabilities(longest + 1);
  for (std::size_t length = 0; length < longest; ++length)
    probabilities[length] = hit * std::pow(1 - hit, static_cast<double>(length));
  probabilities[longest] = std::pow(1 - hit, static_cast<double>(longest));

  std::size_t words_left = count << (bits + 2); // four times what is expected: for words that never hit
  for (std::size_t i = 0; i < count; ++i) {
    std::size_t length = 0;
    for (; words_left != 0; ++length) {
      --words_left;
      if (next() >> (32 - bits) == 0)
        break;
    }
    ++counts[words_left == 0 ? longest : std::min(length, longest)];
  }
  return p_of_counts(counts, probabilities);
}

double runs(word_source& source, std::size_t count) {
  word_reader next(source);
  constexpr std::size_t longest = 12;
  std::vector<std::uint64_t> counts(longest);
  std::vector<double> probabilities(longest);
  double at_least = 1; // 1 / r!
  for (std::size_t r = 1; r <= longest; ++r) {
    const double longer = at_least / static_cast<double>(r + 1);
    probabilities[r - 1] = r == longest ? at_least : at_least - longer;
    at_least = longer;
  }
  for (std::size_t i = 0; i < count; ++i) {
    std::size_t length = 1;
    std::uint32_t last = next();
    for (; length < longest; ++length) {
      const std::uint32_t word = next();
      if (word <= last)
        break;
      last = word;
    }
    ++counts[length - 1];
  }
  return p_of_counts(counts, probabilities);
}

double birthday_spacings(word_source& source, std::size_t birthdays, unsigned dimensions, unsigned bits,
                         std::size_t years) {
  word_reader next(source);
  std::vector<std::uint64_t> days(birthdays), spacings(birthdays - 1);
  std::uint64_t equal = 0;
  for (std::size_t year = 0; year < years; ++year) {
    for (std::uint64_t& day : days) {
      day = 0;
      for (unsigned d = 0; d < dimensions; ++d)
        day = day << bits | next() >> (32 - bits);
    }
    std::sort(days.begin(), days.end());
    for (std::size_t i = 0; i + 1 < birthdays; ++i)
      spacings[i] = days[i + 1] - days[i];
    std::sort(spacings.begin(), spacings.end());
    for (std::size_t i = 0; i + 2 < birthdays; ++i)
      equal += spacings[i] == spacings[i + 1];
  }
  const double mean =
      std::ldexp(std::pow(static_cast<double>(birthdays), 3), -static_cast<int>(dimensions * bits) - 2);
  return p_of_poisson(equal, mean * static_cast<double>(years));
}

} // namespace quality
