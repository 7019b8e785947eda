// mrg32k3a's substream modes against a plain model: substream i is the sequence skipped by i 2^76 steps.
#include "support.hpp"

namespace kestro::hvl::rng::test {
namespace {

constexpr std::uint32_t streams = 4;

std::vector<std::uint32_t> substream(sycl::queue& queue, std::uint32_t i, std::int64_t n) {
  mrg32k3a engine(queue, 21);
  engine.skip_ahead({0, std::uint64_t{i} << 12}); // i 2^76
  return usm_values(bits<>(), engine, queue, n);
}

TEST(substreams_test, values_are_taken_from_the_substreams_in_turn) {
  on_every_device([](sycl::queue& queue) {
    std::vector<std::vector<std::uint32_t>> words;
    for (std::uint32_t i = 0; i < streams; ++i)
      words.push_back(substream(queue, i, 400));
    mrg32k3a plain(queue, 1);
    mrg32k3a engine(queue, 21, mrg32k3a_mode::custom{streams});
    std::size_t g = 0;
    for (const std::int64_t n : {10, 3, 1, 2, 0, 4, 401}) {
      SCOPED_TRACE(n);
      const mrg32k3a copy = engine;
      mrg32k3a again = copy; // copies carry mode and place
      const auto values = usm_values(uniform<double>(0, 4294967088.0), engine, queue, n);
      if (n != 0)
        expect_same(buffer_values(uniform<double>(0, 4294967088.0), again, n), values);
      for (const double value : values) {
        // the interval was chosen so that a value is its word but for rounding
        ASSERT_NEAR(value, words[g % streams][g / streams], 1e-3) << "value " << g;
        ++g;
      }
    }
  });
}

TEST(substreams_test, both_devices_agree_in_every_mode) {
  auto cpu = devices().front().queue, gpu = devices().back().queue;
  const auto compare = [&](auto mode) {
    mrg32k3a on_cpu(cpu, 7, mode), on_gpu(gpu, 7, mode);
    for (const std::int64_t n : {1, 1000, 90000, 5})
      expect_same(usm_values(uniform<float>(), on_gpu, gpu, n), usm_values(uniform<float>(), on_cpu, cpu, n));
    on_cpu.skip_ahead(3);
    on_gpu.skip_ahead(3);
    expect_same(usm_values(uniform<int>(0, 100), on_gpu, gpu, 10),
                usm_values(uniform<int>(0, 100), on_cpu, cpu, 10));
  };
  compare(mrg32k3a_mode::optimal{});
  compare(mrg32k3a_mode::custom{1});
  compare(mrg32k3a_mode::custom{1000});
  mrg32k3a optimal(gpu, 7, mrg32k3a_mode::optimal{}), zero(gpu, 7, mrg32k3a_mode::custom{0});
  expect_same(usm_values(uniform<float>(), zero, gpu, 90000),
              usm_values(uniform<float>(), optimal, gpu, 90000));
}

// 50 calls that each launched every substream would take as many times ten seconds.
TEST(substreams_test, substreams_without_a_value_cost_nothing) {
  on_every_device([](sycl::queue& queue) {
    mrg32k3a engine(queue, 21, mrg32k3a_mode::custom{0xFFFFFFFF});
    for (std::uint32_t i = 0; i < 50; ++i)
      ASSERT_NEAR(usm_values(uniform<double>(0, 4294967088.0), engine, queue, 1)[0],
                  substream(queue, i, 1)[0], 1e-3);
  });
}

TEST(substreams_test, saved_states_keep_mode_and_place) {
  using two_steps = gaussian<double, gaussian_method::box_muller>;
  on_every_device([](sycl::queue& queue) {
    const auto check = [&](mrg32k3a engine, std::int64_t before) {
      usm_values(uniform<double>(), engine, queue, before);
      usm_values(two_steps(), engine, queue, 1); // its row takes two steps
      std::vector<unsigned char> state(static_cast<std::size_t>(get_state_size(engine)));
      save_state(engine, state.data());
      for (device_case& other : devices()) {
        mrg32k3a original = engine, loaded = load_state<mrg32k3a>(other.queue, state.data());
        for (const std::int64_t n : {3, 0, 100'000})
          expect_same(usm_values(uniform<double>(), loaded, other.queue, n),
                      usm_values(uniform<double>(), original, queue, n));
        expect_same(usm_values(two_steps(), loaded, other.queue, 9),
                    usm_values(two_steps(), original, queue, 9));
      }
    };
    check(mrg32k3a(queue, 21, mrg32k3a_mode::optimal{}), 100);
    check(mrg32k3a(queue, 21, mrg32k3a_mode::custom{streams}), 10);
    check(mrg32k3a(queue, 21, mrg32k3a_mode::custom{1}), 10);
    check(mrg32k3a(queue, 21), 10);
  });
}

TEST(substreams_test, a_call_for_nothing_changes_nothing) {
  on_every_device([](sycl::queue& queue) {
    mrg32k3a engine(queue, 21, mrg32k3a_mode::custom{streams}), untouched = engine;
    usm_values(uniform<float>(), engine, queue, 1);
    usm_values(uniform<float>(), untouched, queue, 1);
    usm_values(gaussian<float, gaussian_method::box_muller>(), engine, queue, 0);
    expect_same(usm_values(uniform<float>(), engine, queue, 20),
                usm_values(uniform<float>(), untouched, queue, 20));
  });
}

TEST(substreams_test, other_distributions_are_refused_before_anything_is_submitted) {
  on_every_device([](sycl::queue& queue) {
    mrg32k3a engine(queue, 7, mrg32k3a_mode::optimal{}), untouched = engine;
    std::uint32_t word = 0;
    EXPECT_EQ(refusal<invalid_argument>([&] { generate(bits<>(), engine, 1, &word); }),
              "kestro::hvl::rng::generate: invalid argument: mrg32k3a with optimal/custom modes doesn't "
              "support this "
              "distribution");
    expect_same(usm_values(uniform<float>(), engine, queue, 9),
                usm_values(uniform<float>(), untouched, queue, 9));
  });
}

} // namespace
} // namespace kestro::hvl::rng::test
