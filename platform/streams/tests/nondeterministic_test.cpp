// The engine whose words follow from nothing: that none is given out twice, that a source which is stuck or dry is refused,
// and that its words are even. With sound sources a test here fails once in 2^40 runs or less.
#include <sys/wait.h>
#include <unistd.h>

#include <bit>
#include <cmath>
#include <cstring>
#include <thread>

#include "generators/gather.hpp"
#include "support.hpp"

namespace hvl::streams::test {
namespace {

constexpr std::int32_t id = VQS_ENGINE_NONDETERMINISTIC;

std::vector<std::uint64_t> pairs_of(const std::vector<std::uint32_t>& words) {
  std::vector<std::uint64_t> pairs(words.size() / 2);
  std::memcpy(pairs.data(), words.data(), pairs.size() * sizeof pairs[0]);
  return pairs;
}

void expect_no_word_twice(std::vector<std::uint64_t> pairs) {
  std::sort(pairs.begin(), pairs.end());
  EXPECT_EQ(std::adjacent_find(pairs.begin(), pairs.end()), pairs.end());
}

// 0 is the processor's, which this machine may lack, 1 the system's.
std::vector<owned_stream> streams_of_all_sources() {
  std::vector<owned_stream> streams;
  for (const std::uint32_t source : {0u, 1u}) {
    owned_stream stream(id);
    static_cast<vqs_nondeterministic_record*>(static_cast<vqs_stream>(stream))->source = source;
    vqs_stream copy = nullptr;
    if (vqsCopyStream_64(&copy, stream) == VQS_STATUS_OK)
      streams.push_back(owned_stream::adopt(copy));
  }
  return streams;
}

TEST(nondeterministic, no_words_come_twice_from_streams_copies_states_or_threads) {
  constexpr std::size_t n = 60'000;
  for (const owned_stream& stream : streams_of_all_sources()) {
    const auto state = stream.saved();
    EXPECT_EQ(state.size(), 16u + 4 + 4);
    vqs_stream loaded = nullptr;
    ASSERT_EQ(vqsLoadStreamM_64(&loaded, state.data()), VQS_STATUS_OK);
    std::vector<owned_stream> all{stream, stream, owned_stream::adopt(loaded), owned_stream(id, 1),
                                  owned_stream(id, 1)};
    std::vector<std::vector<std::uint32_t>> words(all.size());
    {
      std::vector<std::jthread> threads;
      for (std::size_t i = 0; i < all.size(); ++i)
        threads.emplace_back([&, i] { words[i] = all[i].bits(n); }); // a call is split over threads, too
    }
    std::vector<std::uint64_t> pairs;
    for (const auto& some : words) {
      const auto more = pairs_of(some);
      pairs.insert(pairs.end(), more.begin(), more.end());
    }
    EXPECT_EQ(pairs.size(), all.size() * n / 2);
    expect_no_word_twice(pairs);
  }
}

TEST(nondeterministic, a_forked_process_goes_another_way) {
  for (const owned_stream& of_source : streams_of_all_sources()) {
    owned_stream stream = of_source;
    stream.bits(3); // half a draw is left over
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    constexpr std::size_t n = 64;
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    std::uint32_t words[2 * n] = {};
    if (child == 0) {
      const bool made = viRngUniformBits_64(0, stream, n, words) == VQS_STATUS_OK &&
                        ::write(ends[1], words, n * 4) == static_cast<ssize_t>(n * 4);
      ::_exit(made ? 0 : 1);
    }
    ASSERT_EQ(viRngUniformBits_64(0, stream, n, words + n), VQS_STATUS_OK);
    int status = 1;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_EQ(status, 0);
    ASSERT_EQ(::read(ends[0], words, n * 4), static_cast<ssize_t>(n * 4));
    ::close(ends[0]);
    ::close(ends[1]);
    expect_no_word_twice(pairs_of({words, words + 2 * n}));
  }
}

TEST(nondeterministic, bits_are_even_and_nothing_is_written_outside) {
  for (const owned_stream& of_source : streams_of_all_sources()) {
    owned_stream stream = of_source;
    constexpr std::size_t n = 1 << 17;
    int ones[32] = {};
    for (const std::uint32_t word : stream.bits(n))
      for (int bit = 0; bit < 32; ++bit)
        ones[bit] += static_cast<int>(word >> bit & 1);
    for (int bit = 0; bit < 32; ++bit) // 8 standard deviations
      EXPECT_LT(std::abs(ones[bit] - static_cast<int>(n / 2)), 8 * 182) << bit;
    for (const std::size_t size : {0u, 1u, 2u, 3u, 64u, 4099u}) {
      std::vector<std::uint32_t> memory(size + 2, 0xA5A5A5A5);
      ASSERT_EQ(viRngUniformBits_64(0, stream, static_cast<std::int64_t>(size), memory.data() + 1),
                VQS_STATUS_OK);
      EXPECT_EQ(memory.front(), 0xA5A5A5A5);
      EXPECT_EQ(memory.back(), 0xA5A5A5A5);
    }
    for (const double value : stream.doubles(1000))
      EXPECT_TRUE(value >= 0 && value < 1);
  }
}

TEST(nondeterministic, has_no_sequence_to_move_in) {
  owned_stream stream(id);
  const std::uint64_t distance = 5;
  EXPECT_EQ(vqsSkipAheadStream_64(stream, 5), VQS_STATUS_SKIP_UNSUPPORTED);
  EXPECT_EQ(vqsAdvanceStream_64(stream, 1, &distance), VQS_STATUS_SKIP_UNSUPPORTED);
  EXPECT_EQ(vqsLeapfrogStream_64(stream, 0, 2), VQS_STATUS_LEAPFROG_UNSUPPORTED);
  const std::uint32_t words[] = {1, 2};
  EXPECT_NE(owned_stream(id, words).bits(8), owned_stream(id, words).bits(8));
  static_cast<vqs_nondeterministic_record*>(static_cast<vqs_stream>(stream))->source = 2;
  vqs_stream copy = nullptr;
  EXPECT_EQ(vqsCopyStream_64(&copy, stream), VQS_STATUS_STATE_RANGE);
  const auto state = stream.saved();
  EXPECT_EQ(vqsLoadStreamM_64(&copy, state.data()), VQS_STATUS_STATE_RANGE);
  EXPECT_EQ(copy, nullptr);
}

TEST(nondeterministic, a_source_that_is_stuck_or_dry_is_refused) {
  std::uint32_t words[100];
  std::uint64_t count = 0;
  const auto counting = [&](std::uint64_t& word) {
    word = ++count * 0x9E3779B97F4A7C15;
    return true;
  };
  ASSERT_TRUE(gather(counting, words, 99));
  EXPECT_EQ(count, 51u); // the first is compared with only
  EXPECT_EQ(words[0], static_cast<std::uint32_t>(2 * 0x9E3779B97F4A7C15));
  for (const std::uint64_t last : {0u, 1u, 30u, 50u}) {
    const auto stuck_from = [&](std::uint64_t& word) {
      count += count < last ? 1 : 0;
      word = count == last ? ~std::uint64_t{0} : count;
      return true;
    };
    const auto dry_from = [&](std::uint64_t& word) { return counting(word) && count <= last; };
    count = 0;
    EXPECT_FALSE(gather(stuck_from, words, 100)) << last;
    count = 0;
    EXPECT_FALSE(gather(dry_from, words, 100)) << last;
  }
  EXPECT_FALSE(gather([](std::uint64_t& word) { return word = 7, true; }, words, 1)); // even a single word
}

} // namespace
} // namespace hvl::streams::test
