// The members of mt2203: their periods, and that they are independent of each other. Each statistic's false-alarm rate is
// 1e-6 for an ideal source, by its exact or limiting distribution, and each is shown to see members that begin in one state.
#include <boost/math/distributions/chi_squared.hpp>
#include <boost/math/distributions/poisson.hpp>

#include <algorithm>
#include <cmath>
#include <functional>

#include "hvl/streams_record.h"
#include "support.hpp"

namespace hvl::streams::test {
namespace {

constexpr double false_alarms = 1e-6;
constexpr std::size_t members = 64;

TEST(mt2203_members, go_round_their_periods) {
  // 2^2203 - 1 outputs
  std::vector<std::uint64_t> period(35, ~std::uint64_t{0});
  period.back() >>= 37;
  for (const std::int32_t member : {0, 1, 3000, 6023}) {
    owned_stream stream(VQS_ENGINE_MT2203 + member);
    stream.bits(77);
    const auto expected = owned_stream(stream).bits(600);
    expect_equal(stream.skip_words(period).bits(600), expected);
    period.front() ^= 2; // no other
    EXPECT_NE(stream.skip_words(period).bits(600), expected);
    period.front() ^= 2;
  }
}

// Row i: the words of the i-th of `members` members, of one seed.
using words_of_members = std::vector<std::vector<std::uint32_t>>;

words_of_members words(std::size_t n, bool in_one_state = false) {
  words_of_members rows;
  const owned_stream first(VQS_ENGINE_MT2203, 7);
  for (std::size_t i = 0; i < members; ++i) {
    owned_stream stream(VQS_ENGINE_MT2203 + static_cast<std::int32_t>(i * 6023 / (members - 1)), 7);
    if (in_one_state)
      std::ranges::copy(static_cast<const vqs_mt2203_record*>(static_cast<vqs_stream>(first))->words,
                        static_cast<vqs_mt2203_record*>(static_cast<vqs_stream>(stream))->words);
    rows.push_back(stream.bits(n));
  }
  return rows;
}

double two_sided(double below, double above) {
  return 2 * std::min(below, above);
}

// The correlations of all pairs of members, of their values and of values one place apart, are nearly normal and
// uncorrelated: the sum of their squares has a chi-squared distribution.
double correlation_p_value(const words_of_members& rows) {
  const std::size_t n = rows[0].size() - 1;
  const auto centred = [](std::uint32_t word) { return (word + 0.5) * 0x1p-32 - 0.5; };
  double sum = 0;
  int terms = 0;
  for (std::size_t i = 0; i < rows.size(); ++i)
    for (std::size_t j = 0; j < rows.size(); ++j)
      for (const std::size_t lag : {0u, 1u}) {
        if (lag == 0 ? j <= i : j == i)
          continue;
        double product = 0;
        for (std::size_t k = 0; k < n; ++k)
          product += centred(rows[i][k]) * centred(rows[j][k + lag]);
        sum += 144 * product * product / static_cast<double>(n);
        ++terms;
      }
  const boost::math::chi_squared law(terms);
  return two_sided(boost::math::cdf(law, sum), boost::math::cdf(boost::math::complement(law, sum)));
}

TEST(mt2203_members, are_not_correlated) {
  EXPECT_GT(correlation_p_value(words(10'001)), false_alarms);
  EXPECT_LT(correlation_p_value(words(1001, true)), false_alarms);
}

// G. Marsaglia's test in the form of P. L'Ecuyer, R. Simard, "On the performance of birthday spacings tests with certain
// families of random number generators", Mathematics and Computers in Simulation 55 (2001): of m days out of 2^32, in
// order, equal spacings are nearly Poisson with mean m^3 / 2^34. `day` forms one from the next words in turn.
double birthday_p_value(const words_of_members& rows,
                        const std::function<std::uint32_t(const std::function<std::uint32_t()>&)>& day,
                        int repetitions) {
  constexpr std::size_t m = 4096;
  std::size_t at = 0;
  const auto next = [&] {
    const std::uint32_t word = rows[at % members][at / members];
    ++at;
    return word;
  };
  double equal = 0;
  for (int repetition = 0; repetition < repetitions; ++repetition) {
    std::vector<std::uint32_t> days(m), spacings;
    for (std::uint32_t& one : days)
      one = day(next);
    std::ranges::sort(days);
    for (std::size_t i = 0; i < m; ++i) // round the year
      spacings.push_back(days[(i + 1) % m] - days[i]);
    std::ranges::sort(spacings);
    for (std::size_t i = 1; i < m; ++i)
      equal += spacings[i] == spacings[i - 1];
  }
  const boost::math::poisson law(4.0 * repetitions);
  return two_sided(boost::math::cdf(law, equal),
                   equal == 0 ? 1 : boost::math::cdf(boost::math::complement(law, equal - 1)));
}

TEST(mt2203_members, interleaved_pass_birthday_spacings) {
  constexpr int repetitions = 500;
  const auto whole = [](const auto& next) { return next(); };
  const auto upper_halves_of_two = [](const auto& next) {
    const std::uint32_t first = next();
    return first >> 16 << 16 | next() >> 16;
  };
  const auto lower_bits_of_four = [](const auto& next) {
    std::uint32_t day = 0;
    for (int i = 0; i < 4; ++i)
      day = day << 8 | (next() & 0xFF);
    return day;
  };
  const auto rows = words(repetitions * 4 * 4096 / members);
  const auto faulty = words(64, true); // of one day in four already
  EXPECT_GT(birthday_p_value(rows, whole, repetitions), false_alarms);
  EXPECT_GT(birthday_p_value(rows, upper_halves_of_two, repetitions), false_alarms);
  EXPECT_GT(birthday_p_value(rows, lower_bits_of_four, repetitions), false_alarms);
  EXPECT_LT(birthday_p_value(faulty, whole, 1), false_alarms);
}

} // namespace
} // namespace hvl::streams::test
