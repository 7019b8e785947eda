// multinomial: vectors, threads and splits give what its formula makes of uniform integers, at every word; counts follow the
// exact joint law on both sides of where the method changes, and add up.
#include <hvl/math/transforms/multinomial.hpp>

#include <boost/math/distributions/binomial.hpp>
#include <boost/math/distributions/normal.hpp>

#include <cmath>
#include <limits>
#include <map>

#include "law_fit.hpp"

namespace hvl::streams::test {
namespace {

using O = math::scalar_ops<double>;
using probabilities = std::vector<double>;
constexpr std::int32_t greatest = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t philox = VQS_ENGINE_PHILOX4X32X10;

struct law {
  std::int32_t trials;
  probabilities p;

  std::size_t dimension() const { return p.size(); }
  int generate(vqs_stream s, std::int64_t n, std::int32_t* r) const {
    return viRngMultinomial_64(0, s, n, r, trials, static_cast<std::int32_t>(p.size()), p.data());
  }
  std::vector<std::int32_t> counts(vqs_stream s, std::size_t n) const {
    std::vector<std::int32_t> values(n * dimension() + 1, poison);
    EXPECT_EQ(generate(s, static_cast<std::int64_t>(n), values.data()), VQS_STATUS_OK);
    EXPECT_EQ(values.back(), poison) << "written behind the end";
    values.pop_back();
    return values;
  }
  std::vector<double> table() const {
    std::vector<double> numbers;
    math::make_multinomial_table(p.data(), p.size(), numbers);
    return numbers;
  }
};

std::vector<std::int32_t> one_by_one(const law& l, std::vector<std::int32_t> values) {
  const std::vector<double> table = l.table();
  for (std::size_t i = 0; i < values.size(); i += l.dimension())
    math::multinomial_in_place<O>(l.trials, l.dimension(), table.data(), values.data() + i);
  return values;
}

// Integers of uniform doubles, whose floors they are.
std::vector<std::int32_t> uniform_integers(vqs_stream s, std::size_t n) {
  std::vector<double> reals(n);
  EXPECT_EQ(vdRngUniform_64(0, s, static_cast<std::int64_t>(n), reals.data(), -0x1p31, 0x1p31),
            VQS_STATUS_OK);
  std::vector<std::int32_t> integers;
  for (const double x : reals)
    integers.push_back(static_cast<std::int32_t>(std::clamp(std::floor(x), -0x1p31, 0x1p31 - 1)));
  return integers;
}

// Few and many trials, both methods in one vector and in one vector of lanes, outcomes that are impossible, one outcome.
const law laws[] = {{20, {0.1, 0.0, 0.55, 0.35, 0.0}},
                    {64, {0.25, 0.25, 0.5}},
                    {1000, {0.01, 0.6, 0.016, 0.2, 0.014, 0.16}},
                    {greatest, {1e-9, 0.0, 0.7, 0.3 - 1e-9, 0.0}},
                    {0, {0.5, 0.5}},
                    {7, {1.0}},
                    {3, probabilities(40, 0.025)}};

class multinomial_of : public each_engine {};

TEST_P(multinomial_of, has_the_bits_of_its_formula) {
  for (const law& l : laws) {
    SCOPED_TRACE(testing::Message() << l.trials << " trials, " << l.dimension() << " outcomes");
    owned_stream origin(id());
    origin.skip(3);
    constexpr std::size_t longest = 700;
    const auto expected = one_by_one(l, uniform_integers(owned_stream(origin), longest * l.dimension()));
    for_every_mode([&] {
      for (const std::size_t n : {std::size_t{0}, std::size_t{1}, std::size_t{7}, std::size_t{29}, longest}) {
        owned_stream stream(origin);
        const auto first = expected.begin();
        expect_equal(l.counts(stream, n), {first, first + static_cast<std::ptrdiff_t>(n * l.dimension())});
        EXPECT_EQ(stream.saved(), owned_stream(origin).skip(n * l.dimension()).saved());
      }
    });
  }
}

TEST_P(multinomial_of, threads_and_splits_change_nothing) {
  const law l{100, {0.1, 0.2, 0.7}};
  constexpr std::size_t n = 150'001, first = 50'002;
  std::vector<std::int32_t> parts;
  {
    const run_mode one_thread(-1, 1);
    const owned_stream stream(id());
    parts = l.counts(stream, first);
    const auto rest = l.counts(stream, n - first);
    parts.insert(parts.end(), rest.begin(), rest.end());
  }
  const run_mode two_threads(-1, 2);
  expect_equal(l.counts(owned_stream(id()), n), parts);
}

HVL_STREAMS_FOR_EACH_ENGINE(multinomial_of);

// The ends of the integers and both sides of the steps of the first count's law, where a uniform needs what refines it: as
// mcg59's state they are its first word.
TEST(multinomial, has_the_bits_of_its_formula_at_every_kind_of_word) {
  constexpr std::size_t n = 16;
  for (const law& l : laws) {
    SCOPED_TRACE(testing::Message() << l.trials << " trials, " << l.dimension() << " outcomes");
    std::vector<std::uint32_t> words = {0, 1, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFE, 0xFFFFFFFF};
    const std::vector<double> table = l.table();
    const auto outcome = math::multinomial_outcome_at(table.data(), 0);
    if (l.trials * outcome.rare < math::multinomial_least_rejected)
      for (int k = 0; k < std::min(l.trials, 12); ++k) {
        const boost::math::binomial_distribution<> first(l.trials, outcome.rare);
        const double step = std::floor(cdf(first, k) * 0x1p32);
        for (const double near : {step - 1, step, step + 1})
          words.push_back(static_cast<std::uint32_t>(std::clamp(near, 0.0, 0x1p32 - 1)));
      }
    for (const std::uint32_t word : words) {
      const std::uint32_t state[] = {word << 27 | 1, word >> 5};
      const owned_stream origin(VQS_ENGINE_MCG59, state);
      const auto integers = uniform_integers(owned_stream(origin), n * l.dimension());
      ASSERT_EQ(math::multinomial_word(integers[0]), word);
      const auto expected = one_by_one(l, integers);
      for (std::size_t i = 0; i < expected.size(); i += l.dimension()) {
        std::int64_t sum = 0;
        for (std::size_t k = 0; k < l.dimension(); ++k) {
          ASSERT_TRUE(expected[i + k] >= 0 && (l.p[k] > 0 || expected[i + k] == 0)) << i << ' ' << k;
          sum += expected[i + k];
        }
        ASSERT_EQ(sum, l.trials) << i;
      }
      for_every_mode([&] { expect_equal(l.counts(owned_stream(origin), n), expected); });
    }
  }
}

// Within one word's cell both counts have their share: of one trial the first outcome has the cells above 1 - p.
TEST(multinomial, refines_a_word_that_does_not_decide) {
  constexpr double share = 0.3, p = 0x1p-2 + share * 0x1p-32;
  const law l{1, {p, 1 - p}};
  constexpr int n = 100'000;
  std::vector<std::int32_t> values;
  for (int i = 0; i < n; ++i) {
    values.push_back(0x3FFFFFFF); // 3/4 less a step
    values.push_back(7 * i);
  }
  values = one_by_one(l, values);
  int taken = 0;
  for (std::size_t i = 0; i < values.size(); i += 2)
    taken += values[i];
  comparisons::count();
  const double deviations = boost::math::quantile(boost::math::complement(boost::math::normal(), alarm / 2));
  EXPECT_NEAR(taken, n * share, deviations * std::sqrt(n * share * (1 - share)));
}

// Every count, and the sum of the first two, is binomial.
void check_marginals(const law& l) {
  SCOPED_TRACE(testing::Message() << l.trials << " trials, " << l.dimension() << " outcomes");
  constexpr std::size_t n = std::size_t{1} << 18;
  const auto check = [&](double p, const auto& value_of) {
    SCOPED_TRACE(p);
    const double mean = l.trials * p, deviation = std::sqrt(mean * (1 - p));
    const auto exact = [&](double k, double of_p) {
      return cdf(boost::math::binomial_distribution<>(l.trials, of_p), std::min<double>(k, l.trials));
    };
    const double wrong_p = p + (p < 0.5 ? 0.1 : -0.1) * deviation / l.trials;
    check_law(
        philox, n, mean, deviation, [&](double k) { return exact(k, p); },
        [&](double k) { return exact(k, wrong_p); },
        [&](vqs_stream s, std::int64_t vectors, std::int32_t* r) {
          const auto counts = l.counts(s, static_cast<std::size_t>(vectors));
          for (std::size_t i = 0; i < counts.size(); i += l.dimension())
            r[i / l.dimension()] = value_of(&counts[i]);
          return VQS_STATUS_OK;
        });
  };
  for (std::size_t k = 0; k < l.dimension(); ++k)
    check(l.p[k], [=](const std::int32_t* counts) { return counts[k]; });
  if (l.dimension() > 2)
    check(l.p[0] + l.p[1], [](const std::int32_t* counts) { return counts[0] + counts[1]; });
}

TEST(multinomial, counts_and_their_sums_are_binomial) {
  check_marginals({2, {0.5, 0.25, 0.25}});
  check_marginals({20, {0.3, 0.1, 0.2, 0.4}});
  check_marginals({63, {0.25, 0.75}}); // added up
  check_marginals({64, {0.25, 0.75}}); // rejected
  check_marginals({1000, {0.02, 0.58, 0.4}});
  check_marginals({1'000'000'000, {1e-9, 2e-8, 0.6, 0.4 - 2.1e-8}});
  check_marginals({greatest, {0.9, 0.1}});
}

// The chance of every vector of three counts.
TEST(multinomial, few_trials_have_the_exact_joint_law) {
  const law l{5, {0.2, 0.5, 0.3}};
  constexpr std::size_t n = std::size_t{1} << 19;
  std::map<std::vector<std::int32_t>, std::uint64_t> seen;
  const auto values = l.counts(owned_stream(philox), n);
  for (std::size_t i = 0; i < values.size(); i += 3)
    ++seen[{values[i], values[i + 1], values[i + 2]}];
  EXPECT_EQ(seen.size(), 21u);
  std::vector<std::uint64_t> counts;
  std::vector<double> expected, wrong;
  const auto chance = [&](const std::vector<std::int32_t>& x, const probabilities& p) {
    double logarithm = std::lgamma(l.trials + 1.0);
    for (std::size_t k = 0; k < 3; ++k)
      logarithm += x[k] * std::log(p[k]) - std::lgamma(x[k] + 1.0);
    return std::exp(logarithm);
  };
  for (const auto& [x, count] : seen) {
    counts.push_back(count);
    expected.push_back(static_cast<double>(n) * chance(x, l.p));
    wrong.push_back(static_cast<double>(n) * chance(x, {0.2, 0.51, 0.29}));
  }
  expect_fit(chi_square(counts, expected), counts.size());
  EXPECT_GT(chi_square(counts, wrong), critical_chi_square(counts.size())) << "a wrong law passes";
}

constexpr std::size_t sides = 8;

law_cells binomial_cells(std::int32_t trials, double p) {
  const auto law = [=](double k) { return cdf(boost::math::binomial_distribution<>(trials, p), k); };
  return law_cells(law, sides, -1, trials, true);
}

// Given the first count the second is binomial, of the trials that are left: its cell among those of that law is independent of
// the first count's.
void check_pairs(const law& l) {
  SCOPED_TRACE(testing::Message() << l.trials << " trials");
  constexpr std::size_t n = std::size_t{1} << 18;
  const auto values = l.counts(owned_stream(philox), n);
  const law_cells first = binomial_cells(l.trials, l.p[0]);
  std::map<std::int32_t, law_cells> seconds;
  std::vector<std::uint64_t> pairs(first.count() * sides);
  std::vector<double> expected(pairs.size());
  for (std::size_t i = 0; i < values.size(); i += 3) {
    const std::size_t row = first(values[i]) * sides;
    const std::int32_t left = l.trials - values[i];
    auto found = seconds.find(values[i]);
    if (found == seconds.end())
      found = seconds.emplace(values[i], binomial_cells(left, l.p[1] / (l.p[1] + l.p[2]))).first;
    const law_cells& second = found->second;
    ++pairs[row + second(values[i + 1])];
    for (std::size_t k = 0; k < second.count(); ++k)
      expected[row + k] += second.probability()[k]; // given the first counts
  }
  // of few trials there are fewer cells
  std::vector<std::uint64_t> seen;
  std::vector<double> possible;
  for (std::size_t i = 0; i < pairs.size(); ++i)
    if (expected[i] > 0) {
      seen.push_back(pairs[i]);
      possible.push_back(expected[i]);
    }
  expect_fit(chi_square(seen, possible), seen.size());
}

TEST(multinomial, later_counts_have_their_law_given_earlier_ones) {
  check_pairs({40, {0.3, 0.3, 0.4}});     // added up
  check_pairs({1000, {0.01, 0.4, 0.59}}); // one of each
  check_pairs({20'000, {0.3, 0.4, 0.3}}); // rejected
}

// Covariances of all pairs within their standard errors, and far from those of independent counts.
TEST(multinomial, has_the_covariance) {
  const law l{300, {0.2, 0.1, 0.4, 0.3}};
  constexpr std::size_t n = std::size_t{1} << 18, d = 4;
  const auto values = l.counts(owned_stream(philox), n);
  const double deviations = boost::math::quantile(boost::math::complement(boost::math::normal(), alarm / 2));
  for (std::size_t a = 0; a < d; ++a)
    for (std::size_t b = 0; b < a; ++b) {
      double covariance = 0;
      for (std::size_t i = 0; i < values.size(); i += d)
        covariance += (values[i + a] - l.trials * l.p[a]) * (values[i + b] - l.trials * l.p[b]) / n;
      const double exact = -l.trials * l.p[a] * l.p[b];
      const double error =
          deviations *
          std::sqrt((l.trials * l.p[a] * (1 - l.p[a]) * l.trials * l.p[b] * (1 - l.p[b]) + exact * exact) /
                    n);
      comparisons::count();
      EXPECT_NEAR(covariance, exact, error) << a << ' ' << b;
      EXPECT_GT(-exact, error) << "independent counts pass";
    }
}

TEST(multinomial, misuse_changes_nothing) {
  const owned_stream stream(philox);
  const auto before = stream.saved();
  constexpr double nan = std::numeric_limits<double>::quiet_NaN();
  std::int32_t r[4] = {poison, poison, poison, poison};
  const double p[] = {0.25, 0.75}, twice[] = {1, 1}, negative[] = {-0.5, 1.5}, none[] = {0, 0},
               bad[] = {nan, 1};
  constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
  EXPECT_EQ(viRngMultinomial_64(1, stream, 1, r, 3, 2, p), VQS_STATUS_BAD_METHOD);
  EXPECT_EQ(viRngMultinomial_64(0, stream, 1, r, -1, 2, p), VQS_STATUS_BAD_PARAMETER);
  for (const std::int32_t k : {0, -1, -greatest})
    EXPECT_EQ(viRngMultinomial_64(0, stream, 1, r, 3, k, p), VQS_STATUS_BAD_PARAMETER);
  for (const double* const wrong : {twice, negative, none, bad})
    EXPECT_EQ(viRngMultinomial_64(0, stream, 1, r, 3, 2, wrong), VQS_STATUS_BAD_PARAMETER);
  EXPECT_EQ(viRngMultinomial_64(0, stream, 1, r, 3, 2, nullptr), VQS_STATUS_NULL_POINTER);
  EXPECT_EQ(viRngMultinomial_64(0, stream, -1, r, 3, 2, p), VQS_STATUS_BAD_COUNT);
  EXPECT_EQ(viRngMultinomial_64(0, stream, most / 2 + 1, r, 3, 2, p), VQS_STATUS_BAD_COUNT);
  EXPECT_TRUE(std::all_of(r, r + 4, [](std::int32_t v) { return v == poison; }));
  EXPECT_EQ(stream.saved(), before);
  EXPECT_EQ(viRngMultinomial_64(0, stream, 2, r, 3, 2, p), VQS_STATUS_OK);
}

} // namespace
} // namespace hvl::streams::test
