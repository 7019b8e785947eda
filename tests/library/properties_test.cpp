// What holds for every engine, so that a new one inherits it.
#include "support.hpp"

namespace kestro::hvl::rng::test {
namespace {

template <class Engine>
class properties_test : public ::testing::Test {};
TYPED_TEST_SUITE(properties_test, all_engines, engine_names);

// Sizes around the widths of vectors, blocks and work-items.
const std::vector<std::int64_t> sizes = {1, 0, 2, 3, 4, 5, 7, 64, 63, 129, 1000, 624, 4099, 1, 20000};

TYPED_TEST(properties_test, any_split_gives_the_same_numbers) {
  on_every_device([](sycl::queue& queue) {
    TypeParam whole = seeded<TypeParam>(queue, 12345), split = whole;
    std::int64_t total = 0;
    for (const std::int64_t n : sizes)
      total += n;
    const auto expected = usm_values(uniform<float>(-1, 1), whole, queue, total);
    std::vector<float> parts;
    bool in_usm = true;
    for (const std::int64_t n : sizes) {
      const auto part = in_usm || n == 0 ? usm_values(uniform<float>(-1, 1), split, queue, n,
                                                      static_cast<std::size_t>(n % 5))
                                         : buffer_values(uniform<float>(-1, 1), split, n);
      parts.insert(parts.end(), part.begin(), part.end());
      in_usm = !in_usm;
    }
    expect_same(parts, expected);
  });
}

// On a ring, in several segments.
TYPED_TEST(properties_test, long_calls_are_the_same_on_every_device) {
  constexpr std::int64_t n = (std::int64_t{1} << 23) + 7;
  std::vector<std::vector<std::uint32_t>> values;
  on_every_device([&](sycl::queue& queue) {
    TypeParam engine = seeded<TypeParam>(queue, 2468);
    auto long_one = usm_values(bits<>(), engine, queue, 3);
    for (const std::int64_t count : {n, std::int64_t{100}}) {
      const auto part = usm_values(bits<>(), engine, queue, count);
      long_one.insert(long_one.end(), part.begin(), part.end());
    }
    values.push_back(std::move(long_one));
  });
  if (values.size() < 2)
    GTEST_SKIP() << "has one device only";
  expect_same(values[1], values[0]);
}

TYPED_TEST(properties_test, a_skip_equals_discarding) {
  if constexpr (!skips<TypeParam>) {
    GTEST_SKIP() << "has no skip";
  } else {
    on_every_device([](sycl::queue& queue) {
      for (const std::int64_t distance : {0, 1, 3, 223, 224, 225, 624, 9973, 100003}) {
        SCOPED_TRACE(distance);
        TypeParam stepped = seeded<TypeParam>(queue, 77);
        usm_values(bits<>(), stepped, queue, 5);
        TypeParam skipped = stepped;
        if (distance != 0)
          usm_values(bits<>(), stepped, queue, distance);
        skipped.skip_ahead(static_cast<std::uint64_t>(distance));
        expect_same(usm_values(bits<>(), skipped, queue, 300), usm_values(bits<>(), stepped, queue, 300));
      }
    });
  }
}

TYPED_TEST(properties_test, far_skips_add_up) {
  if constexpr (!skips<TypeParam>) {
    GTEST_SKIP() << "has no skip";
  } else {
    on_every_device([](sycl::queue& queue) {
      const std::uint64_t far = std::uint64_t{1} << 62, near = 123456789;
      TypeParam one = seeded<TypeParam>(queue, 9), two = one;
      one.skip_ahead(far + near);
      two.skip_ahead(near);
      two.skip_ahead(far);
      expect_same(usm_values(bits<>(), two, queue, 700), usm_values(bits<>(), one, queue, 700));
    });
  }
}

TYPED_TEST(properties_test, a_copy_continues_on_its_own) {
  on_every_device([](sycl::queue& queue) {
    TypeParam original = seeded<TypeParam>(queue, 5);
    usm_values(bits<>(), original, queue, 1001);
    TypeParam copied = original;
    TypeParam assigned = seeded<TypeParam>(queue, 6);
    assigned = original;
    TypeParam reference = original;
    const auto expected = usm_values(bits<>(), reference, queue, 2000);
    expect_same(usm_values(bits<>(), copied, queue, 2000), expected);
    expect_same(usm_values(bits<>(), original, queue, 2000), expected);
    TypeParam moved = std::move(assigned);
    expect_same(usm_values(bits<>(), moved, queue, 2000), expected);
    const TypeParam& self = moved;
    moved = self;
    expect_same(usm_values(bits<>(), moved, queue, 10), usm_values(bits<>(), copied, queue, 10));
  });
}

// Saved in mid-block on one device, loaded on the same and on the other one.
TYPED_TEST(properties_test, a_saved_state_continues_on_any_device) {
  for (const std::int64_t consumed : {0, 1, 2, 3, 4, 623, 624, 625, 1000, 1248}) {
    SCOPED_TRACE(consumed);
    on_every_device([&](sycl::queue& queue) {
      TypeParam engine = seeded<TypeParam>(queue, 4242);
      if (consumed != 0)
        usm_values(bits<>(), engine, queue, consumed);
      std::vector<unsigned char> state(static_cast<std::size_t>(get_state_size(engine)) + 8, 0xEE);
      save_state(engine, state.data());
      EXPECT_EQ(std::vector<unsigned char>(state.end() - 8, state.end()),
                std::vector<unsigned char>(8, 0xEE));
      const auto expected = usm_values(bits<>(), engine, queue, 1500);
      on_every_device([&](sycl::queue& other) {
        TypeParam loaded = load_state<TypeParam>(other, state.data());
        expect_same(usm_values(bits<>(), loaded, other, 1500), expected);
      });
    });
  }
}

TYPED_TEST(properties_test, leapfrog_takes_every_stride_th_value) {
  if constexpr (!leapfrogs<TypeParam>) {
    GTEST_SKIP() << "has no leapfrog";
  } else {
    on_every_device([](sycl::queue& queue) {
      TypeParam whole = seeded<TypeParam>(queue, 31);
      usm_values(bits<>(), whole, queue, 3);
      TypeParam leaping = whole;
      const std::uint64_t stride = 5;
      leaping.leapfrog(2, stride);
      const auto all = usm_values(bits<>(), whole, queue, 5000);
      std::vector<std::uint32_t> expected;
      for (std::size_t i = 2; i < all.size(); i += stride)
        expected.push_back(all[i]);
      expect_same(usm_values(bits<>(), leaping, queue, static_cast<std::int64_t>(expected.size())), expected);
      TypeParam next = whole; // stands at element 5000 of the sequence, which is the next one but two
      next.skip_ahead(2);
      expect_same(usm_values(bits<>(), leaping, queue, 1), usm_values(bits<>(), next, queue, 1));
    });
  }
}

TYPED_TEST(properties_test, skips_beyond_64_bits_wrap_like_steps) {
  if constexpr (!skips_by_words<TypeParam>) {
    GTEST_SKIP() << "skips by one word only";
  } else {
    on_every_device([](sycl::queue& queue) {
      TypeParam one = seeded<TypeParam>(queue, 8), two = one;
      one.skip_ahead({5, 3});
      two.skip_ahead(5);
      for (int i = 0; i < 3; ++i) {
        two.skip_ahead(std::uint64_t{1} << 63);
        two.skip_ahead(std::uint64_t{1} << 63);
      }
      expect_same(usm_values(bits<>(), one, queue, 40), usm_values(bits<>(), two, queue, 40));
    });
  }
}

// What the class offers is what the engine's facts say.
TYPED_TEST(properties_test, skips_and_leapfrog_are_offered_as_the_facts_say) {
  using ::hvl::engines::skip_form;
  const auto& about = facts_of<TypeParam>();
  EXPECT_EQ(about.has_leapfrog, leapfrogs<TypeParam>);
  EXPECT_EQ(about.skip == skip_form::by_words, skips_by_words<TypeParam>);
  EXPECT_EQ(about.skip != skip_form::none, skips<TypeParam>);
}

} // namespace
} // namespace kestro::hvl::rng::test
