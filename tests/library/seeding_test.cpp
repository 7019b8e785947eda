// What engines make of the words that they are seeded from, on every device.
#include "support.hpp"

namespace kestro::hvl::rng::test {
namespace {

using words = std::vector<std::uint32_t>;

template <class Engine, class... Seed>
std::vector<std::uint32_t> first_words(sycl::queue& queue, Seed... seed) {
  Engine engine(queue, seed...);
  return usm_values(bits<>(), engine, queue, 50);
}

template <class Engine>
class seeding_test : public ::testing::Test {};
TYPED_TEST_SUITE(seeding_test, all_engines, engine_names);

TYPED_TEST(seeding_test, words_of_a_vector_give_the_same_engine_on_every_device) {
  auto cpu = devices().front().queue, gpu = devices().back().queue;
  for (const words& seed : {words{}, words{7}, words{7, 9}, words{1, 2, 3, 4, 5, 6, 7, 8, 9}}) {
    if (facts_of<TypeParam>().is_quasi_random && seed.size() > 1)
      continue; // no such tables
    expect_same(first_words<TypeParam>(gpu, seed), first_words<TypeParam>(cpu, seed));
  }
  if (facts_of<TypeParam>().is_quasi_random)
    return;
  const words one{7, 1}, other{7, 2};
  EXPECT_NE(first_words<TypeParam>(cpu, one)[3], first_words<TypeParam>(cpu, other)[3]);
}

TEST(seeding_test, a_vector_has_the_words_of_a_list) {
  on_every_device([](sycl::queue& queue) {
    using list = std::initializer_list<std::uint32_t>;
    const list seed{5, 6, 7, 8, 9, 10};
    expect_same(first_words<mrg32k3a>(queue, words(seed)), first_words<mrg32k3a>(queue, seed));
    expect_same(first_words<mt19937>(queue, words(seed)), first_words<mt19937>(queue, seed));
    expect_same(first_words<mcg31m1>(queue, words(seed)), first_words<mcg31m1>(queue, seed));
    const std::uint64_t wide = 0x123456789ABCDEF;
    expect_same(first_words<mcg59>(queue, words{0x89ABCDEF, 0x1234567}),
                first_words<mcg59>(queue, std::initializer_list<std::uint64_t>{wide, 4}));
    expect_same(first_words<philox4x32x10>(queue, words{0x89ABCDEF, 0x1234567}),
                first_words<philox4x32x10>(queue, wide));
    for (const mrg32k3a_mode::custom mode : {mrg32k3a_mode::custom{3}, mrg32k3a_mode::custom{0}}) {
      mrg32k3a from_vector(queue, words(seed), mode), from_list(queue, {5, 6, 7, 8, 9, 10}, mode);
      expect_same(usm_values(uniform<float>(), from_vector, queue, 50),
                  usm_values(uniform<float>(), from_list, queue, 50));
    }
  });
}

TEST(seeding_test, quasi_random_engines_refuse_what_has_no_points) {
  on_every_device([](sycl::queue& queue) {
    const std::string prefix = "kestro::hvl::rng::", invalid = ": invalid argument: ";
    for (const std::uint32_t dimensions : {0u, 21202u})
      EXPECT_EQ(refusal<invalid_argument>([&] { sobol(queue, dimensions); }),
                prefix + "sobol" + invalid + "dimensions is out of range [1, 21201]");
    EXPECT_EQ(refusal<invalid_argument>([&] { niederreiter(queue, 4721); }),
              prefix + "niederreiter" + invalid + "dimensions is out of range [1, 4720]");
    EXPECT_EQ(refusal<invalid_argument>([&] { sobol(queue, {2, 5}); }), prefix + "sobol" + invalid + "words");
    EXPECT_EQ(refusal<invalid_argument>([&] {
                niederreiter(queue, words{2, 3, 5});
              }),
              prefix + "niederreiter" + invalid + "words");
    expect_same(first_words<niederreiter>(queue, words{3, 2, 3, 7}), first_words<niederreiter>(queue, 3u));
  });
}

// Lists of philox4x32x10 alone differ.
TEST(seeding_test, a_cpu_device_takes_half_the_words_of_a_philox_list) {
  using list = std::initializer_list<std::uint64_t>;
  const list seed{0x200000001, 0x400000003};
  for (device_case& device : devices()) {
    const words read = std::strcmp(device.name, "CPU") == 0 ? words{1, 2} : words{1, 2, 3, 4};
    expect_same(first_words<philox4x32x10>(device.queue, seed),
                first_words<philox4x32x10>(device.queue, read));
  }
}

TEST(seeding_test, lists_of_congruential_engines_are_their_state) {
  on_every_device([](sycl::queue& queue) {
    mcg31m1 narrow(queue, {1234567});
    EXPECT_EQ(usm_values(bits<>(), narrow, queue, 1)[0], 1234567u);
    mcg59 wide(queue, {0x3123456789ABCDE});
    EXPECT_EQ(usm_values(bits<>(), wide, queue, 1)[0], 0x3123456789ABCDE >> 27);
    const mcg59 empty(queue, {});
  });
}

} // namespace
} // namespace kestro::hvl::rng::test
