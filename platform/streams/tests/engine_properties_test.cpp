// What holds for every engine, each under every instruction set and number of threads.
#include <oneapi/tbb/task_arena.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <random>
#include <set>

#include "support.hpp"

namespace hvl::streams::test {
namespace {

// Enough for a split over two threads.
constexpr std::size_t long_request = 300'007;

class engine_properties : public each_engine {
 protected:
  // The sequence, one number at a time by the scalar path.
  std::vector<std::uint32_t> reference(std::size_t n) const {
    const run_mode mode(HVL_ISA_SCALAR, 1);
    owned_stream stream(id());
    std::vector<std::uint32_t> words(n);
    for (std::uint32_t& word : words)
      EXPECT_EQ(viRngUniformBits_64(0, stream, 1, &word), VQS_STATUS_OK);
    return words;
  }
};

TEST_P(engine_properties, any_split_gives_the_same_sequence) {
  const auto expected = reference(long_request);
  for_every_mode([&] {
    expect_equal(owned_stream(id()).bits(long_request), expected);
    std::mt19937 sizes(1);
    owned_stream stream(id());
    std::vector<std::uint32_t> pieces;
    const std::size_t limits[] = {3, 40, 700, 5000};
    while (pieces.size() < 60'000) {
      const auto piece = stream.bits(sizes() % limits[sizes() % 4]);
      pieces.insert(pieces.end(), piece.begin(), piece.end());
    }
    expect_equal(pieces, {expected.begin(), expected.begin() + static_cast<std::ptrdiff_t>(pieces.size())});
  });
}

TEST_P(engine_properties, skipping_equals_discarding_in_outputs_and_in_state) {
  const auto check = [&](std::size_t before, std::size_t n) {
    SCOPED_TRACE(std::to_string(before) + " then " + std::to_string(n));
    owned_stream stepped(id());
    stepped.bits(before);
    owned_stream skipped(stepped);
    stepped.bits(n);
    skipped.skip(n);
    ASSERT_EQ(skipped.saved(), stepped.saved());
    expect_equal(skipped.bits(30), stepped.bits(30));
  };
  for_every_mode([&] {
    for (const std::size_t before : {0u, 1u, 2u, 3u, 5u, 623u, 624u})
      for (const std::size_t n : {0u, 1u, 2u, 3u, 4u, 5u, 7u, 8u, 64u, 623u, 624u, 625u, 1248u, 4099u})
        check(before, n);
    check(3, 262'144);
    check(0, 2'000'003); // mt19937 jumps
  });
}

TEST_P(engine_properties, skips_add_up_beyond_64_bits) {
  const std::uint64_t half = std::uint64_t{1} << 63;
  owned_stream twice(id());
  twice.skip(half).skip(half).skip(5);
  owned_stream at_once(id());
  at_once.skip_words({5, 1});
  EXPECT_EQ(at_once.saved(), twice.saved());

  owned_stream high(id());
  high.skip_words({0, half}).skip_words({0, half, 0}).skip(9);
  owned_stream third_word(id());
  third_word.skip_words({9, 0, 1});
  EXPECT_EQ(third_word.saved(), high.saved());

  // in the middle of a block, a count whose low word is less than what is left of the block
  owned_stream first_far(id());
  first_far.skip_words({0, 0, 1}).bits(2);
  owned_stream first_near(id());
  first_near.bits(1);
  EXPECT_EQ(first_near.skip_words({1, 0, 1}).saved(), first_far.saved());

  owned_stream still(id());
  still.bits(3);
  owned_stream moved(still);
  moved.skip_words({}).skip_words({0, 0, 0, 0});
  EXPECT_EQ(moved.saved(), still.saved());
  const bool period_divides = id() == VQS_ENGINE_MCG59; // its period is 2^57
  EXPECT_EQ(moved.skip_words({0, 1}).saved() == still.saved(), period_divides);
}

TEST_P(engine_properties, copies_are_deep_and_continue_alike) {
  for_every_mode([&] {
    for (const std::size_t n : {0u, 1u, 6u, 1000u}) {
      owned_stream original(id());
      original.bits(n);
      owned_stream copy(original);
      const auto expected = original.bits(2000);
      original.bits(17);
      expect_equal(copy.bits(2000), expected);
    }
  });
}

TEST_P(engine_properties, saved_states_continue_in_the_middle_of_a_block) {
  for_every_mode([&] {
    for (const std::size_t n : {0u, 1u, 2u, 3u, 4u, 622u, 623u, 624u, 625u, 5000u}) {
      owned_stream original(id());
      original.bits(n);
      const auto state = original.saved();
      vqs_stream loaded = nullptr;
      ASSERT_EQ(vqsLoadStreamM_64(&loaded, state.data()), VQS_STATUS_OK);
      owned_stream restored = owned_stream::adopt(loaded);
      EXPECT_EQ(vqsEngineOfStream(restored), id());
      EXPECT_EQ(restored.saved(), state);
      expect_equal(restored.bits(3000), original.bits(3000));
    }
  });
}

TEST_P(engine_properties, nothing_is_written_outside_a_misaligned_output) {
  const auto expected = reference(6000);
  constexpr std::size_t guard = 96;
  for_every_mode([&] {
    for (const std::size_t n : {0u, 1u, 3u, 15u, 16u, 63u, 191u, 192u, 193u, 1535u, 1537u, 6000u}) {
      for (const std::size_t offset : {0u, 1u, 7u}) {
        std::vector<std::uint32_t> memory(n + 2 * guard, 0xA5A5A5A5);
        owned_stream stream(id());
        std::uint32_t* const out = memory.data() + guard + offset;
        ASSERT_EQ(viRngUniformBits_64(0, stream, static_cast<std::int64_t>(n), out), VQS_STATUS_OK);
        ASSERT_TRUE(std::equal(out, out + n, expected.begin()));
        ASSERT_TRUE(std::all_of(memory.data(), out, [](std::uint32_t w) { return w == 0xA5A5A5A5; }));
        ASSERT_TRUE(std::all_of(out + n, memory.data() + memory.size(),
                                [](std::uint32_t w) { return w == 0xA5A5A5A5; }));
      }
    }
  });
}

TEST_P(engine_properties, different_seeds_and_words_give_different_sequences) {
  const auto first = owned_stream(id(), 1).bits(8);
  EXPECT_EQ(owned_stream(id(), 1).bits(8), first);
  EXPECT_NE(owned_stream(id(), 2).bits(8), first);
  if (!GetParam().about.is_quasi_random) { // its words are no seed
    const std::uint32_t words[] = {1, 2};
    EXPECT_NE(owned_stream(id(), std::span(words, 1)).bits(8), owned_stream(id(), words).bits(8));
  }
  const auto none = owned_stream(id(), std::span<const std::uint32_t>()).bits(8);
  EXPECT_NE(none[0], none[1]);
}

TEST_P(engine_properties, members_have_identifiers_in_a_row_and_sequences_of_their_own) {
  const engines::facts& about = GetParam().about;
  std::set<std::vector<std::uint32_t>> sequences;
  for (std::int32_t member = id(); member - id() < about.members; ++member) {
    owned_stream stream(member);
    const auto state = stream.saved();
    vqs_stream loaded = nullptr;
    ASSERT_EQ(vqsLoadStreamM_64(&loaded, state.data()), VQS_STATUS_OK);
    owned_stream restored = owned_stream::adopt(loaded);
    EXPECT_EQ(vqsEngineOfStream(restored), member);
    const auto words = stream.bits(100);
    expect_equal(restored.bits(100), words);
    EXPECT_TRUE(sequences.insert(words).second) << member - id();
  }
  for (const std::int32_t other : {id() - 1, id() + about.members}) {
    vqs_stream none = nullptr;
    EXPECT_EQ(vqsNewStream_64(&none, other, 1), VQS_STATUS_UNKNOWN_ENGINE);
    EXPECT_EQ(none, nullptr);
  }
}

// A large call at an address of any alignment, on a stream that stands anywhere in a block, gives what small calls give.
// The count is enough for streaming stores and, with seven places for threads, for three parts of the engine that is
// dearest to split and seven of the others.
template <class T, class Call>
void expect_large_as_small(std::int32_t id, int isa, std::size_t lead, std::size_t offset, const Call& call) {
  SCOPED_TRACE(testing::Message() << "isa " << isa << ", " << lead << " words before, at element " << offset);
  constexpr std::size_t n = 13'000'003;
  const run_mode mode(isa, 7);
  tbb::task_arena arena(7);
  owned_stream stream(id);
  stream.bits(lead);
  constexpr std::size_t line = 64 / sizeof(T);
  const auto storage = std::make_unique_for_overwrite<T[]>(n + 3 * line);
  const std::size_t to_line = -reinterpret_cast<std::uintptr_t>(storage.get()) % 64 / sizeof(T);
  T* const whole = storage.get() + to_line + line + offset;
  whole[-1] = whole[n] = T(77);
  ASSERT_EQ(arena.execute([&] { return call(stream, std::int64_t{n}, whole); }), VQS_STATUS_OK);
  EXPECT_EQ(whole[-1], T(77));
  EXPECT_EQ(whole[n], T(77));
  owned_stream pieces(id);
  pieces.bits(lead);
  std::vector<T> piece(70'002);
  for (std::size_t first = 0; first < n; first += piece.size()) {
    const std::size_t count = std::min(piece.size(), n - first);
    ASSERT_EQ(call(pieces, static_cast<std::int64_t>(count), piece.data()), VQS_STATUS_OK);
    ASSERT_EQ(std::memcmp(piece.data(), whole + first, count * sizeof(T)), 0) << "from " << first;
  }
  EXPECT_EQ(stream.saved(), pieces.saved());
}

TEST_P(engine_properties, large_output_is_the_same_as_small_outputs) {
  const auto uniform = [](vqs_stream stream, std::int64_t n, float* r) {
    return vsRngUniform_64(0, stream, n, r, 0.0f, 1.0f);
  };
  for (const std::size_t lead : {0u, 1u})
    for (const std::size_t offset : {0u, 1u})
      expect_large_as_small<float>(id(), -1, lead, offset, uniform);
  if (hvl_serv_isa_supported(HVL_ISA_AVX2))
    expect_large_as_small<float>(id(), HVL_ISA_AVX2, 0, 0, uniform);
  const auto bits = [](vqs_stream stream, std::int64_t n, std::uint32_t* r) {
    return viRngUniformBits_64(0, stream, n, r);
  };
  expect_large_as_small<std::uint32_t>(id(), -1, 1, 3, bits);
  const auto gaussian = [](vqs_stream stream, std::int64_t n, float* r) {
    return vsRngGaussian_64(VQS_METHOD_GAUSSIAN_BOX_MULLER2, stream, n, r, 0.0f, 1.0f);
  };
  expect_large_as_small<float>(id(), -1, 1, 1, gaussian);
  const auto wide = [](vqs_stream stream, std::int64_t n, double* r) {
    return vdRngExponential_64(0, stream, n, r, 0.0, 1.0);
  };
  expect_large_as_small<double>(id(), -1, 0, 5, wide);
}

// Two hundred places for threads cut this call into parts of 79872 values and a last one of a single value.
TEST_P(engine_properties, a_tiny_last_part_stays_within_the_output) {
  constexpr std::size_t n = 106 * 79'872 + 1;
  tbb::task_arena arena(200);
  std::vector<float> memory(n + 64, -1.0f);
  owned_stream stream(id());
  const int status =
      arena.execute([&] { return vsRngUniform_64(0, stream, n, memory.data() + 1, 0.0f, 1.0f); });
  ASSERT_EQ(status, VQS_STATUS_OK);
  EXPECT_EQ(memory[0], -1.0f);
  EXPECT_TRUE(std::all_of(memory.begin() + n + 1, memory.end(), [](float value) { return value == -1.0f; }));
  float last = -1.0f;
  ASSERT_EQ(vsRngUniform_64(0, owned_stream(id()).skip(n - 1), 1, &last, 0.0f, 1.0f), VQS_STATUS_OK);
  EXPECT_EQ(memory[n], last);
}

HVL_STREAMS_FOR_EACH_ENGINE(engine_properties);

template <class Engine>
class counter_engines : public ::testing::Test {
 protected:
  static owned_stream stream() {
    return owned_stream(Engine::about.identifier, std::uint64_t{22} << 32 | 11);
  }
  static typename Engine::record& record(const owned_stream& stream) {
    return *static_cast<typename Engine::record*>(static_cast<vqs_stream>(stream));
  }
};
using counter_engine_types = ::testing::Types<engines::philox4x32x10, engines::ars5>;
TYPED_TEST_SUITE(counter_engines, counter_engine_types);

TYPED_TEST(counter_engines, have_a_period_of_2_to_130) {
  owned_stream stream = this->stream();
  stream.bits(1);
  const auto before = stream.saved();
  EXPECT_EQ(stream.skip_words({0, 0, 4}).saved(), before);
  EXPECT_EQ(stream.skip_words({0, 0, 1}).skip_words({0, 0, 3, 77}).saved(), before);
}

TYPED_TEST(counter_engines, give_remaining_words_and_carry) {
  // remaining 4: the whole block before the counter is still to come
  for_every_mode([&] {
    for (const std::uint32_t c0 : {0xFFFFFFF0u, 0u}) {
      owned_stream plain = this->stream();
      auto& p = this->record(plain);
      p.c0 = c0;
      p.c1 = p.c2 = p.c3 = 0xFFFFFFFF;
      const auto expected = owned_stream(plain).bits(9000);
      for (std::uint32_t remaining = 0; remaining <= 4; ++remaining) {
        owned_stream stream(plain);
        auto& r = this->record(stream);
        if (++r.c0 == 0) // the block before the counter is the plain stream's first
          r.c1 = r.c2 = r.c3 = 0;
        r.remaining = remaining;
        for (const std::size_t n : {1u, 6u, 800u, 8000u})
          expect_equal(owned_stream(stream).bits(n),
                       {expected.begin() + 4 - remaining,
                        expected.begin() + 4 - remaining + static_cast<std::ptrdiff_t>(n)});
        owned_stream skipped(stream);
        skipped.skip(remaining + 3);
        expect_equal(skipped.bits(10), {expected.begin() + 7, expected.begin() + 17});
      }
    }
  });
}

} // namespace
} // namespace hvl::streams::test
