// What kernels make with hvl/engines is what streams give.
#include "support.hpp"

namespace hvl::streams::test {
namespace {

template <class Engine>
typename Engine::record& record_of(const owned_stream& stream) {
  return *static_cast<typename Engine::record*>(static_cast<vqs_stream>(stream));
}

template <class Engine>
class positions : public ::testing::Test {
 protected:
  // The words of a cursor at any place, from where the stream stands, are the stream's.
  static void check(const owned_stream& stream) {
    const auto state = Engine::state_of(record_of<Engine>(stream));
    for (const std::uint64_t block : {0ull, 1ull, 2ull, 7ull, 624ull, 1ull << 33, (1ull << 60) + 5}) {
      SCOPED_TRACE("block " + std::to_string(block));
      auto cursor = Engine::at(state, block);
      std::vector<std::uint32_t> actual;
      for (int i = 0; i < 3; ++i) {
        typename Engine::word words[4];
        cursor.next(words);
        for (const auto word : words)
          actual.push_back(Engine::raw(word));
      }
      expect_equal(actual, owned_stream(stream).skip(4 * block).bits(actual.size()));
    }
    if constexpr (requires { Engine::leap_of(state, 1, 1); })
      check_leaps(state);
  }

  // A leap from a block passes over as many as it says, which are whole units, as many as wanted.
  static void check_leaps(const typename Engine::state& state) {
    struct wanted {
      std::uint64_t unit, units;
    };
    for (const auto [unit, units] :
         {wanted{1, 1}, {1, 64}, {4, 64}, {6, 1000}, {1, 1ull << 33}, {1, (1ull << 60) + 7}}) {
      SCOPED_TRACE("a leap of " + std::to_string(units) + " units of " + std::to_string(unit));
      const auto leap = Engine::leap_of(state, unit, units);
      if (leap.blocks == 0) { // no whole points are whole units, or they are more than there are
        EXPECT_TRUE(Engine::about.is_quasi_random && (unit == 6 || units > 1ull << 32));
        continue;
      }
      EXPECT_EQ(leap.blocks % unit, 0u);
      EXPECT_GE(leap.blocks / unit, units);
      const int leaps = units > 1ull << 32 ? 2 : 39;
      auto cursor = Engine::at(state, 5), expected = Engine::at(state, 5 + leaps * leap.blocks);
      for (int i = 0; i < leaps; ++i)
        cursor.pass(leap);
      typename Engine::word words[4], expected_words[4];
      cursor.next(words);
      expected.next(expected_words);
      expect_equal(std::vector(words, words + 4), std::vector(expected_words, expected_words + 4));
    }
  }
};
using position_types =
    ::testing::Types<engines::philox4x32x10, engines::ars5, engines::mrg32k3a, engines::mcg31m1,
                     engines::mcg59, engines::wichmann_hill, engines::sobol, engines::niederreiter>;
TYPED_TEST_SUITE(positions, position_types);

TYPED_TEST(positions, are_those_of_the_stream) {
  for (std::size_t before = 0; before < 6; ++before) {
    owned_stream stream(TypeParam::about.identifier, 7);
    stream.bits(before);
    this->check(stream);
  }
  if constexpr (requires(typename TypeParam::record r) { r.remaining; }) {
    owned_stream stream(TypeParam::about.identifier, 7);
    stream.bits(4);
    record_of<TypeParam>(stream).remaining = 4; // the whole block once more
    this->check(stream);
  }
  this->check(owned_stream(TypeParam::about.identifier + TypeParam::about.members - 1, 7));
  if constexpr (TypeParam::about.is_quasi_random)
    for (const std::uint32_t dimensions : {1u, 3u, 12u, 100u}) {
      owned_stream stream(TypeParam::about.identifier, dimensions);
      this->check(stream);
      record_of<TypeParam>(stream).point = 0xFFFFFFFF - 9; // ten points before the first one comes again
      this->check(stream);
    }
  if constexpr (TypeParam::about.has_leapfrog) {
    const owned_stream stream(TypeParam::about.identifier, 7);
    ASSERT_EQ(vqsLeapfrogStream_64(stream, 2, 5), VQS_STATUS_OK);
    this->check(stream);
  }
}

template <class Engine>
class recurrences : public ::testing::Test {};
using recurrence_types =
    ::testing::Types<engines::mt19937, engines::mt2203, engines::r250, engines::sfmt19937>;
TYPED_TEST_SUITE(recurrences, recurrence_types);

TYPED_TEST(recurrences, are_those_of_the_stream) {
  owned_stream stream(TypeParam::about.identifier, 7);
  const auto& record = record_of<TypeParam>(stream);
  const auto recurrence = TypeParam::recurrence_of(record);
  std::vector<std::uint32_t> x(std::begin(record.words), std::end(record.words)); // all given out
  x.insert(x.begin(), recurrence.size - x.size(), 0u); // read by words in mid-unit only
  std::vector<std::uint32_t> actual;
  for (std::size_t i = 0; i < 2000; ++i) {
    if constexpr (recurrence.unit == 1)
      x.push_back(recurrence.next(x.data() + i));
    else
      x.push_back(recurrence.next(x.data() + i, static_cast<int>(i % recurrence.unit)));
    actual.push_back(recurrence.output(x.back()));
  }
  expect_equal(actual, stream.bits(actual.size()));
}

} // namespace
} // namespace hvl::streams::test
