// The engine whose numbers cannot be had again: that every device, form, copy and loaded state has its own, and what is
// refused. Its words are tested with the stream library. A false alarm has a chance below 2^-40.
#include <cmath>
#include <set>

#include "support.hpp"

namespace kestro::hvl::rng::test {
namespace {

using pairs = std::vector<std::uint64_t>;

TEST(nondeterministic_test, no_number_comes_twice_from_calls_copies_or_states) {
  std::set<std::uint64_t> seen;
  const auto expect_new = [&](const pairs& values) {
    for (const std::uint64_t value : values)
      ASSERT_TRUE(seen.insert(value).second);
  };
  on_every_device([&](sycl::queue& queue) {
    const uniform_bits<std::uint64_t> whole;
    nondeterministic engine(queue), alike(queue, 1), of_words(queue, std::vector<std::uint32_t>{1, 2});
    for (const std::int64_t n : {0, 1, 2, 1001, 20'000}) {
      expect_new(usm_values(whole, engine, queue, n, 3));
      expect_new(usm_values(whole, alike, queue, n));
      if (n != 0)
        expect_new(buffer_values(whole, of_words, n));
    }
    nondeterministic copied = engine;
    std::vector<unsigned char> state(static_cast<std::size_t>(get_state_size(engine)));
    save_state(engine, state.data());
    on_every_device([&](sycl::queue& other) {
      nondeterministic loaded = load_state<nondeterministic>(other, state.data());
      expect_new(usm_values(whole, loaded, other, 500));
    });
    expect_new(usm_values(whole, copied, queue, 500));
    expect_new(usm_values(whole, engine, queue, 500));
    state[16] = 2; // no such source, and no such checksum
    EXPECT_THROW(load_state<nondeterministic>(queue, state.data()), computation_error);
  });
}

TEST(nondeterministic_test, calls_are_ordered_and_outlive_their_engine) {
  on_every_device([](sycl::queue& queue) {
    constexpr std::size_t n = 3000;
    auto* r = sycl::malloc_shared<float>(n, queue);
    std::fill_n(r, n, -1.0f);
    {
      gate closed(queue);
      nondeterministic engine(queue);
      generate(uniform<float>(2.0f, 3.0f), engine, n, r, {closed.event()});
      EXPECT_EQ(r[0], -1.0f); // behind the gate
      closed.open();
    }
    queue.wait();
    EXPECT_TRUE(std::all_of(r, r + n, [](float value) { return value >= 2 && value <= 3; }));
    sycl::free(r, queue);
  });
}

TEST(nondeterministic_test, distributions_fit) {
  on_every_device([](sycl::queue& queue) {
    constexpr std::int64_t n = 40'000;
    nondeterministic engine(queue);
    const auto normal = usm_values(gaussian<double, gaussian_method::icdf>(1.0, 2.0), engine, queue, n);
    double sum = 0;
    for (const double value : normal)
      sum += value;
    EXPECT_LT(std::abs(sum / n - 1), 8 * 2 / std::sqrt(n));
    const auto trials = buffer_values(geometric<>(0.5), engine, n);
    const auto none = std::count(trials.begin(), trials.end(), 0);
    EXPECT_LT(std::abs(none - n / 2), 8 * std::sqrt(n) / 2);
  });
}

TEST(nondeterministic_test, has_no_way_to_move_and_refuses_what_all_refuse) {
  EXPECT_FALSE(skips<nondeterministic>);
  EXPECT_FALSE(leapfrogs<nondeterministic>);
  on_every_device([](sycl::queue& queue) {
    nondeterministic engine(queue);
    float value = 7;
    EXPECT_EQ(refusal<invalid_argument>([&] { generate(uniform<float>(), engine, -1, &value); }),
              "kestro::hvl::rng::generate: invalid argument: n");
    EXPECT_EQ(value, 7);
  });
  for (const auto& accelerator : sycl::device::get_devices(sycl::info::device_type::accelerator))
    EXPECT_THROW(nondeterministic{sycl::queue(accelerator)}, unsupported_device);
}

} // namespace
} // namespace kestro::hvl::rng::test
