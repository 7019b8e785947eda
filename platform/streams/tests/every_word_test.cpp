#include <gmock/gmock.h>

#include "every_word.hpp"

namespace hvl::streams::test {
namespace {

// With a stride; the program streams_every_word tries them all.
TEST(every_word, makes_a_finite_value) {
  const word_report report = try_words(130'003, 3);
  EXPECT_GT(report.tried, 100'000u);
  EXPECT_THAT(report.not_finite, ::testing::IsEmpty());
}

} // namespace
} // namespace hvl::streams::test
