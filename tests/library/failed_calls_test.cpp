// Calls that fail on their way: an engine stands where it stood, and the next call goes on from there.
#include <cstdlib>
#include <optional>

#include "failing_new.hpp"
#include "support.hpp"

namespace kestro::hvl::rng::test {
namespace {

/// Has a call fail at each of its allocations in turn, until it succeeds.
template <class Distribution, class Engine>
void expect_nothing_lost(const Distribution& distribution, const Engine& engine, sycl::queue queue,
                         std::int64_t n) {
  using T = typename Distribution::result_type;
  T* const r = sycl::malloc_shared<T>(static_cast<std::size_t>(n), queue);
  Engine untouched = engine;
  const std::vector<T> expected = usm_values(distribution, untouched, queue, n);
  int failures = 0;
  for (bool has_failed = true; has_failed; ++failures) {
    Engine one = engine;
    try {
      const failing_new scarce(failures);
      generate(distribution, one, n, r);
      has_failed = false;
    } catch (const std::bad_alloc&) {
      expect_same(usm_values(distribution, one, queue, n), expected);
    }
    queue.wait();
  }
  EXPECT_GT(failures, 1);
  expect_same(std::vector<T>(r, r + n), expected);
  sycl::free(r, queue);
}

template <class Engine>
class failed_calls_test : public ::testing::Test {};
TYPED_TEST_SUITE(failed_calls_test, all_engines, engine_names);

TYPED_TEST(failed_calls_test, lose_nothing) {
  on_every_device([](sycl::queue& queue) {
    TypeParam engine = seeded<TypeParam>(queue, 5);
    usm_values(bits<>(), engine, queue, 3);
    expect_nothing_lost(uniform<float>(), engine, queue, 100);
  });
}

TEST(failed_calls_in_substreams, lose_nothing) {
  on_every_device([](sycl::queue& queue) {
    mrg32k3a engine(queue, 5, mrg32k3a_mode::custom{7});
    usm_values(gaussian<float, gaussian_method::box_muller>(), engine, queue, 3);
    expect_nothing_lost(uniform<float>(), engine, queue, 100);
  });
}

/// Device memory of the embedded runtime is scarce while this lives.
class scarce_memory {
 public:
  explicit scarce_memory(std::size_t most_bytes) {
    ::setenv("QORIN_ALLOCATION_LIMIT", std::to_string(most_bytes).c_str(), 1);
  }
  scarce_memory(const scarce_memory&) = delete;
  scarce_memory& operator=(const scarce_memory&) = delete;
  ~scarce_memory() { ::unsetenv("QORIN_ALLOCATION_LIMIT"); }
};

constexpr std::int64_t many_words = (std::int64_t{1} << 23) + 5; // in several segments

// Its values are made on the host and copied: memory of a call that has thrown is the caller's again.
TEST(failed_calls_of_nondeterministic, leave_the_memory_alone) {
  on_every_device([](sycl::queue& queue) {
    constexpr std::size_t n = 100;
    std::uint32_t* const r = sycl::malloc_shared<std::uint32_t>(n, queue);
    int failures = 0;
    for (bool has_failed = true; has_failed; ++failures) {
      nondeterministic engine(queue);
      std::fill_n(r, n, 0u);
      try {
        const failing_new scarce(failures);
        generate(bits<>(), engine, n, r);
        has_failed = false;
      } catch (const std::bad_alloc&) {
      }
      queue.wait();
      EXPECT_EQ(std::all_of(r, r + n, [](std::uint32_t word) { return word == 0; }), has_failed) << failures;
    }
    EXPECT_GT(failures, 1);
    sycl::free(r, queue);
  });
}

TEST(failed_calls_in_segments, lose_nothing) {
  sycl::queue queue = devices()[1].queue;
  mt19937 engine(queue, 5), untouched = engine;
  const auto expected = usm_values(bits<>(), untouched, queue, 1000);
  auto* const r = sycl::malloc_shared<std::uint32_t>(many_words, queue);
  const auto expect_refused = [&](auto&& refusing) {
    mt19937 one = engine;
    bool has_failed = false;
    try {
      const auto holder = refusing();
      generate(bits<>(), one, many_words, r);
    } catch (const device_bad_alloc&) {
      has_failed = true;
    } catch (const std::bad_alloc&) {
      has_failed = true;
    }
    if (has_failed)
      expect_same(usm_values(bits<>(), one, queue, 1000), expected);
    queue.wait();
    return has_failed;
  };
  EXPECT_TRUE(expect_refused([] { return std::make_unique<scarce_memory>(4000); }));
  EXPECT_TRUE(
      expect_refused([] { return std::make_unique<scarce_memory>(100'000); })); // but for the polynomials
  int failures = 0;
  while (expect_refused([&] { return std::make_unique<failing_new>(failures); }))
    ++failures;
  EXPECT_GT(failures, 0);
  expect_same(std::vector<std::uint32_t>(r, r + 1000), expected);
  sycl::free(r, queue);
}

TEST(failed_assignments, leave_the_target_as_it_was) {
  sycl::queue cpu = devices()[0].queue, gpu = devices()[1].queue;
  const auto check = [](sycl::queue to, sycl::queue from) {
    mt19937 target(to, 1), source(from, 2), untouched = target;
    {
      const scarce_memory none(1000);
      if (from.get_device().is_gpu()) {
        EXPECT_THROW(target = source, device_bad_alloc);
      }
      const mt19937& same = target;
      EXPECT_NO_THROW(target = same);
    }
    expect_same(usm_values(bits<>(), target, to, 700), usm_values(bits<>(), untouched, to, 700));
    EXPECT_NO_THROW(target = source);
    expect_same(usm_values(bits<>(), target, from, 700), usm_values(bits<>(), source, from, 700));
  };
  check(cpu, gpu);
  check(gpu, cpu);
  check(gpu, gpu);
}

TEST(engines_without_memory, end_while_their_work_is_in_flight) {
  on_every_device([](sycl::queue& queue) {
    mt19937 untouched(queue, 5);
    const auto expected = usm_values(bits<>(), untouched, queue, 5000);
    auto* const r = sycl::malloc_shared<std::uint32_t>(5000, queue);
    sycl::queue other(queue.get_device());
    gate closed(other);
    std::optional<mt19937> engine(std::in_place, queue, 5);
    generate(bits<>(), *engine, 5000, r, {closed.event()});
    {
      const failing_new none(0);
      engine.reset();
    }
    closed.open();
    queue.wait();
    expect_same(std::vector<std::uint32_t>(r, r + 5000), expected);
    mt19937(queue, 1); // the next one to end frees what the first one had
    sycl::free(r, queue);
  });
}

} // namespace
} // namespace kestro::hvl::rng::test
