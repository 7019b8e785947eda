// The kernel of engines at a position, an item after the other: at ends of what items share, and at positions and values that
// no memory holds all of.
#include <hvl/streams.h>

#include "distributions/bits.hpp"
#include "framework/kernel_frame.hpp"
#include "support.hpp"

namespace kestro::hvl::rng::test {
namespace {

/// Words as they are, as a distribution of a group of three makes them that keeps one value of each.
struct one_of_three {
  using result_type = std::uint32_t;
  using uniform_type = detail::raw_word;
  static constexpr detail::word_use words{3, 1};
  void operator()(const detail::word_group<uniform_type, 3>& group, std::uint32_t (&values)[1]) const {
    values[0] = group.raw[2];
  }
};

/// The part of an output that a test looks at.
template <class T>
struct window {
  T* values;
  std::int64_t first;
  T& operator[](std::size_t i) const { return values[static_cast<std::int64_t>(i) - first]; }
};

template <class Engine>
class kernel_frame : public ::testing::Test {
 protected:
  using definition = detail::definition_of<Engine>;

  /// Items of a call of first + count values make the last `count` ones, and nothing else is written. `first` is a multiple of
  /// what items make in turns, of any number of them.
  template <class Transform>
  static void check(const vqs_stream start, std::int64_t first, std::int64_t count) {
    using T = typename Transform::result_type;
    using kernel_of =
        detail::gpu::engine_func<Engine, T, typename Transform::uniform_type, Transform, window<T>>;
    const std::vector<T> poison = poisoned<T>(static_cast<std::size_t>(count) + 2 * guard);
    std::vector<T> actual = poison;
    const auto state = definition::state_of(*static_cast<const typename definition::record*>(start));
    const kernel_of kernel({actual.data() + guard, first}, state, {}, first + count);
    const std::size_t begin = kernel.items_of(first), end = kernel.items_of(first + count);
    for (std::size_t item = begin; item < end; ++item)
      kernel(sycl::id<1>(item));

    vqs_stream stream = nullptr;
    ASSERT_EQ(vqsCopyStream_64(&stream, start), VQS_STATUS_OK);
    constexpr auto words = Transform::words;
    const std::uint64_t before = detail::words_of(words, first);
    ASSERT_EQ(vqsSkipAheadStream_64(stream, before), VQS_STATUS_OK);
    std::vector<std::uint32_t> drawn(detail::words_of(words, count));
    ASSERT_EQ(viRngUniformBits_64(0, stream, static_cast<std::int64_t>(drawn.size()), drawn.data()),
              VQS_STATUS_OK);
    vqsDeleteStream_64(&stream);
    std::vector<T> expected = poison;
    for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) {
      detail::word_group<detail::raw_word, words.words> group{};
      std::copy_n(&drawn[i * words.words], words.words, group.raw);
      T value[1];
      Transform()(group, value);
      expected[guard + i] = value[0];
    }
    expect_same(actual, expected);
  }
};
using engines_at_position =
    ::testing::Types<philox4x32x10, mcg31m1, mcg59, mrg32k3a, wichmann_hill, sobol, niederreiter>;
TYPED_TEST_SUITE(kernel_frame, engines_at_position);

TYPED_TEST(kernel_frame, makes_every_value_once) {
  const bool is_quasi_random = detail::about<TypeParam>.is_quasi_random;
  for (const std::uint64_t seed :
       is_quasi_random ? std::vector<std::uint64_t>{1, 3, 40} : std::vector<std::uint64_t>{20211113}) {
    vqs_stream stream = nullptr;
    ASSERT_EQ(vqsNewStream_64(&stream, detail::about<TypeParam>.identifier, seed), VQS_STATUS_OK);
    // Whole shares of items of every width, behind 2^32 blocks, and values behind 2^32, where shares are the longest.
    for (const std::int64_t first : {std::int64_t{0}, std::int64_t{15} << 32})
      for (const std::int64_t count :
           {1, 3, 4, 5, 255, 256, 257, 1279, 1281, 4095, 4096, 4097, 4353, 8193, 32767, 32769}) {
        SCOPED_TRACE(std::to_string(count) + " values from " + std::to_string(first) + ", seed " +
                     std::to_string(seed));
        this->template check<detail::gpu::words_32>(stream, first, count);
        this->template check<detail::gpu::words_64>(stream, first, count);
        this->template check<one_of_three>(stream, first, count);
      }
    vqsDeleteStream_64(&stream);
  }
}

} // namespace
} // namespace kestro::hvl::rng::test
