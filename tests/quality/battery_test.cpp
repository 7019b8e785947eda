// The battery of tools/quality: p-values that keep their law for good words, and every test shown to reject bad ones.
#include <gmock/gmock.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <functional>
#include <map>
#include <set>

#include "battery.hpp"
#include "engine_words.hpp"
#include "quasi.hpp"

namespace quality {
namespace {

constexpr double alarm = 1e-10;
constexpr unsigned size = 16;

// SplitMix64, which is no engine here.
class good_words {
 public:
  explicit good_words(std::uint64_t seed) : state_(seed << 32) {}
  std::uint32_t operator()() {
    std::uint64_t z = state_ += 0x9E3779B97F4A7C15;
    z = (z ^ z >> 30) * 0xBF58476D1CE4E5B9;
    z = (z ^ z >> 27) * 0x94D049BB133111EB;
    return static_cast<std::uint32_t>((z ^ z >> 31) >> 32);
  }

 private:
  std::uint64_t state_;
};

class made_words : public word_source {
 public:
  made_words(unsigned bits, std::function<std::uint32_t()> next)
      : word_source(bits), next_(std::move(next)) {}
  void fill(std::span<std::uint32_t> out) override {
    for (std::uint32_t& word : out)
      word = next_() >> (32 - bits()) << (32 - bits());
  }

 private:
  std::function<std::uint32_t()> next_;
};

std::set<std::string> failed(const std::function<std::uint32_t()>& next) {
  made_words source(32, next);
  std::set<std::string> tests;
  for (const outcome& o : run_battery(source, size))
    if (o.p < alarm)
      tests.insert(o.test);
  return tests;
}

// Of 128 seeds a part of q has p at most q, or fewer where the outcomes are few: with probability 1e-12 no more than 7
// deviations beyond, and not so few that the test would hardly ever give a small p-value.
TEST(battery, p_values_of_good_words_keep_their_law) {
  constexpr int seeds = 128;
  for (const unsigned bits : {32u, 31u, 24u}) {
    std::map<std::string, std::vector<double>> p_of_test;
    for (int seed = 0; seed < seeds; ++seed) {
      made_words source(bits, good_words(static_cast<std::uint64_t>(seed)));
      for (const outcome& o : run_battery(source, size))
        p_of_test[o.test].push_back(o.p);
    }
    for (const auto& [test, all] : p_of_test) {
      SCOPED_TRACE(test + ", bits: " + std::to_string(bits));
      for (const double q : {0.02, 0.1, 0.3, 0.5}) {
        const auto below =
            static_cast<double>(std::count_if(all.begin(), all.end(), [=](double p) { return p <= q; }));
        EXPECT_LE(below, seeds * q + 7 * std::sqrt(seeds * q * (1 - q))) << q;
      }
      EXPECT_GE(std::count_if(all.begin(), all.end(), [](double p) { return p <= 0.5; }), seeds / 16);
      EXPECT_GE(*std::min_element(all.begin(), all.end()), 1e-6);
    }
  }
}

std::function<std::uint32_t()> counter() {
  return [i = 0u]() mutable { return i++; };
}
std::function<std::uint32_t()> low_bits_of_lcg() {
  return [x = 1u]() mutable { return std::rotl(x = x * 1664525 + 1013904223, 24); };
}
std::function<std::uint32_t()> multiples_of_the_golden_section() {
  return [x = 0u]() mutable { return x += 0x9E3779B9; };
}
std::function<std::uint32_t()> linear_feedback() {
  return [x = 1u]() mutable {
    x ^= x << 13;
    x ^= x >> 17;
    return x ^= x << 5;
  };
}
// x(n) = x(n - 3) + x(n - 10), the exclusive or.
std::function<std::uint32_t()> three_taps() {
  std::vector<std::uint32_t> ring(10);
  std::generate(ring.begin(), ring.end(), good_words(1));
  return [ring, i = std::size_t{0}]() mutable {
    ring[i % 10] ^= ring[(i + 7) % 10];
    return ring[i++ % 10];
  };
}
std::function<std::uint32_t()> short_period() {
  std::vector<std::uint32_t> words(1 << 12);
  std::generate(words.begin(), words.end(), good_words(2));
  return [words, i = std::size_t{0}]() mutable { return words[i++ % words.size()]; };
}
std::function<std::uint32_t()> biased_bit() {
  return [next = good_words(3)]() mutable {
    const std::uint32_t word = next();
    return word | (next() % 4 == 0 ? 1u << 25 : 0);
  };
}
std::function<std::uint32_t()> stuck_bit() {
  return [next = good_words(4)]() mutable { return next() & ~(1u << 3); };
}
std::function<std::uint32_t()>
weight_of_the_last() { // a word that follows a heavy one is heavy, half of the time
  return [next = good_words(5), last = 0u]() mutable {
    std::uint32_t word = next();
    if ((std::popcount(word) > 16) != (std::popcount(last) > 16) && next() % 2 == 0)
      word = ~word;
    return last = word;
  };
}

TEST(battery, planted_faults_are_seen_and_every_test_sees_one) {
  const struct {
    const char* name;
    std::function<std::uint32_t()> next;
    std::vector<std::string> seen_by; // among others
  } plants[] = {
      {"counter",
       counter(),
       {"serial_1", "gaps_256", "runs", "birthdays_2", "rank_bit", "complexity", "complexity_512"}},
      {"low bits of an lcg", low_bits_of_lcg(), {"serial_8", "gaps_16"}},
      {"multiples of the golden section",
       multiples_of_the_golden_section(),
       {"serial_2", "serial_4", "runs", "birthdays_1"}},
      {"linear feedback", linear_feedback(), {"rank_word", "complexity", "complexity_512"}},
      {"three taps", three_taps(), {"hamming_triples", "rank_bit", "complexity"}},
      {"short period", short_period(), {"birthdays_2", "serial_2"}},
      {"biased bit", biased_bit(), {"serial_1"}},
      {"stuck bit", stuck_bit(), {"hamming_pairs", "rank_word"}},
      {"weight of the last word", weight_of_the_last(), {"hamming_pairs", "hamming_lags"}},
  };
  std::set<std::string> rejecting;
  for (const auto& plant : plants) {
    const auto tests = failed(plant.next);
    for (const std::string& test : plant.seen_by)
      EXPECT_TRUE(tests.contains(test))
          << plant.name << " passes " << test << "; it fails " << testing::PrintToString(tests);
    rejecting.insert(tests.begin(), tests.end());
  }
  made_words good(32, good_words(6));
  for (const outcome& o : run_battery(good, size))
    EXPECT_TRUE(rejecting.contains(o.test)) << "nothing fails " << o.test;
}

TEST(battery, refuses_sizes_that_it_has_no_tests_for) {
  made_words source(32, good_words(1));
  for (const unsigned wrong : {0u, 14u, 17u, 34u})
    EXPECT_THROW(run_battery(source, wrong), std::invalid_argument) << wrong;
}

std::vector<std::uint32_t> read(const char* engine, view v, std::size_t n, std::uint64_t seed = 42) {
  std::vector<std::uint32_t> words(n);
  engine_words(engine_named(engine), v, seed)->fill(words);
  return words;
}

TEST(engine_words, are_aligned_at_the_highest_bit_and_read_as_asked) {
  constexpr std::size_t n = 1000;
  const auto raw = [](std::uint32_t w) { return w >> 1; };
  const auto words = read("mcg31m1", view::words, n), reversed = read("mcg31m1", view::reversed, n);
  const auto uniforms = read("mcg31m1", view::uniforms, n);
  for (std::size_t i = 0; i < n; ++i) {
    EXPECT_EQ(words[i] & 1, 0u);
    for (unsigned bit = 0; bit < 31; ++bit)
      ASSERT_EQ(raw(words[i]) >> bit & 1, reversed[i] >> (31 - bit) & 1);
    ASSERT_NEAR(static_cast<double>(uniforms[i]), static_cast<double>(words[i]), 257);
    EXPECT_EQ(uniforms[i] & 0xFF, 0u);
  }
}

TEST(engine_words, come_from_substreams_in_turn) {
  constexpr std::size_t n = 100;
  const auto seeds = read("mt19937", view::seeds, 16 * n);
  const auto blocks = read("philox4x32x10", view::blocks, 16 * n);
  const auto members = read("mt2203", view::members, 16 * n);
  for (std::size_t s = 0; s < 16; ++s) {
    const auto of_seed = read("mt19937", view::words, n, 42 + s);
    vqs_stream skipped = nullptr, member = nullptr;
    ASSERT_EQ(vqsNewStream_64(&skipped, VQS_ENGINE_PHILOX4X32X10, 42), VQS_STATUS_OK);
    ASSERT_EQ(vqsSkipAheadStream_64(skipped, s << 40), VQS_STATUS_OK);
    ASSERT_EQ(vqsNewStream_64(&member, VQS_ENGINE_MT2203 + static_cast<std::int32_t>(s), 42), VQS_STATUS_OK);
    std::vector<std::uint32_t> of_block(n), of_member(n);
    ASSERT_EQ(viRngUniformBits_64(0, skipped, n, of_block.data()), VQS_STATUS_OK);
    ASSERT_EQ(viRngUniformBits_64(0, member, n, of_member.data()), VQS_STATUS_OK);
    for (std::size_t i = 0; i < n; ++i) {
      ASSERT_EQ(seeds[16 * i + s], of_seed[i]);
      ASSERT_EQ(blocks[16 * i + s], of_block[i]);
      ASSERT_EQ(members[16 * i + s], of_member[i]);
    }
    vqsDeleteStream_64(&skipped);
    vqsDeleteStream_64(&member);
  }
}

TEST(engine_words, are_refused_where_there_are_none) {
  EXPECT_THROW(engine_named("mt19938"), std::invalid_argument);
  EXPECT_THROW(view_named("sideways"), std::invalid_argument);
  EXPECT_THROW(engine_words(engine_named("sobol"), view::words, 2), std::invalid_argument);
  EXPECT_THROW(engine_words(engine_named("mt2203"), view::blocks, 1), std::invalid_argument);
  EXPECT_THROW(engine_words(engine_named("nondeterministic"), view::seeds, 1), std::invalid_argument);
}

// Hammersley's points are a (0, m, 2)-net; of random ones hardly any interval has its number.
TEST(quasi, measures_tell_nets_from_random_points) {
  constexpr unsigned m = 10;
  std::vector<std::uint32_t> net, random;
  good_words next(7);
  for (std::uint32_t i = 0; i < 1u << m; ++i) {
    std::uint32_t mirrored = 0;
    for (unsigned bit = 0; bit < m; ++bit)
      mirrored |= (i >> bit & 1) << (31 - bit);
    net.insert(net.end(), {i << (32 - m), mirrored});
    random.insert(random.end(), {next(), next()});
  }
  EXPECT_EQ(net_parameter(net, 2), 0u);
  EXPECT_LT(relative_discrepancy(net, 2), 0.2);
  EXPECT_LT(relative_integration_error(net, 2), 0.05);
  auto damaged = net;
  damaged[6] ^= 0x80000000; // in another half: two intervals of half the volume are no longer even
  EXPECT_EQ(net_parameter(damaged, 2), m);

  EXPECT_GE(net_parameter(random, 2), m - 2);
  EXPECT_NEAR(relative_discrepancy(random, 2), 1, 0.7);
  EXPECT_GT(relative_integration_error(random, 2), 0.05);

  // One point in the middle of the line: the square is 1/12, of random points on average 1/2 - 1/3.
  EXPECT_NEAR(relative_discrepancy({0x80000000}, 1), std::sqrt(0.5), 1e-12);
}

} // namespace
} // namespace quality
