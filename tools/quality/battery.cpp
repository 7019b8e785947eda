#include "battery.hpp"

#include <algorithm>
#include <stdexcept>

#include "tests.hpp"

namespace quality {
namespace {

// Days for so many birthdays that one to four equal spacings are expected.
double birthdays_on(word_source& source, unsigned dimensions, unsigned bits, std::size_t years) {
  const unsigned log2_birthdays = (dimensions * bits + 4) / 3;
  return birthday_spacings(source, std::size_t{1} << log2_birthdays, dimensions, bits, years);
}

} // namespace

std::vector<outcome> run_battery(word_source& source, unsigned size) {
  if (size < 16 || size > 32 || size % 2 != 0)
    throw std::invalid_argument("size: an even number from 16 to 32");
  const std::size_t n = std::size_t{1} << size, root = std::size_t{1} << size / 2;
  const unsigned bits = source.bits();
  std::vector<outcome> outcomes;
  const auto add = [&](const char* test, double p) { outcomes.push_back({test, p}); };

  add("serial_1", serial(source, n, 1, std::min(size - 4, 16u)));
  add("serial_2", serial(source, n / 2, 2, (size - 4) / 2));
  add("serial_4", serial(source, n / 4, 4, (size - 4) / 4));
  add("serial_8", serial(source, n / 8, 8, (size - 4) / 8));
  add("gaps_16", gaps(source, n >> 4, 4));
  add("gaps_256", gaps(source, n >> 8, 8));
  add("runs", runs(source, n / 4));
  add("birthdays_1", birthdays_on(source, 1, bits, 8));
  add("birthdays_2", birthdays_on(source, 2, std::min(bits, (3 * size - 10) / 2), 1));
  add("rank_bit", matrix_rank(source, 3 * root / 32, 1, 128));
  add("rank_word", matrix_rank(source, root, bits, 4));
  add("complexity", long_complexity(source, 64 * root));
  add("complexity_512", block_complexity(source, 512, n >> 9));
  add("hamming_pairs", hamming_pairs(source, n / 2));
  add("hamming_lags", hamming_lags(source, n >> 6, root / 4));
  add("hamming_triples", hamming_triples(source, std::size_t{1} << 14, root / 16));
  return outcomes;
}

} // namespace quality
