// Engines used, copied, skipped and destroyed while their work is still in flight.
#include <gmock/gmock.h>

#include <optional>

#include "support.hpp"
#include "waiting.hpp"

namespace kestro::hvl::rng::test {
namespace {

template <class Engine>
class in_flight_test : public ::testing::Test {};
TYPED_TEST_SUITE(in_flight_test, all_engines, engine_names);

constexpr std::int64_t n = 5000;

template <class Engine>
std::vector<std::uint32_t> sequence(sycl::queue& queue, std::int64_t count) {
  Engine engine = seeded<Engine>(queue, 11);
  return usm_values(bits<>(), engine, queue, count);
}

TYPED_TEST(in_flight_test, calls_take_effect_in_call_order_and_outlive_their_engine) {
  on_every_device([](sycl::queue& queue) {
    for (const bool in_order : {false, true}) {
      sycl::queue work =
          in_order ? sycl::queue(queue.get_device(), sycl::property::queue::in_order()) : queue;
      auto* r = sycl::malloc_shared<std::uint32_t>(3 * n, queue);
      std::fill_n(r, 3 * n, 0xDEADBEEF);
      sycl::queue other(queue.get_device());
      gate first(other), second(other);
      {
        TypeParam engine = seeded<TypeParam>(work, 11);
        generate(bits<>(), engine, n, r, {first.event()});
        generate(bits<>(), engine, n, r + n, {second.event()});
        generate(bits<>(), engine, n, r + 2 * n);
      }                              // destroyed before anything has run
      ::hvl::test::let_others_run(); // and so work that wrongly does not wait
      second.open();
      first.open();
      work.wait();
      expect_same(std::vector<std::uint32_t>(r, r + 3 * n), sequence<TypeParam>(queue, 3 * n));
      sycl::free(r, queue);
    }
  });
}

// The copy, the skip and the assignment wait for the work; a second thread lets it go.
TYPED_TEST(in_flight_test, copies_and_skips_see_the_state_behind_the_work) {
  on_every_device([](sycl::queue& queue) {
    auto* r = sycl::malloc_shared<std::uint32_t>(n, queue);
    sycl::queue other(queue.get_device());
    gate closed(other);
    TypeParam engine = seeded<TypeParam>(queue, 11);
    generate(bits<>(), engine, n, r, {closed.event()});
    const ::hvl::test::open_when_waited_for opener([&] { closed.open(); });
    TypeParam copied = engine;
    if constexpr (skips<TypeParam>)
      engine.skip_ahead(100);
    else
      usm_values(bits<>(), engine, queue, 100);
    const auto expected = sequence<TypeParam>(queue, n + 200);
    expect_same(usm_values(bits<>(), copied, queue, 200), {expected.end() - 200, expected.end()});
    expect_same(usm_values(bits<>(), engine, queue, 100), {expected.end() - 100, expected.end()});
    queue.wait();
    expect_same(std::vector<std::uint32_t>(r, r + n), {expected.begin(), expected.begin() + n});
    sycl::free(r, queue);
  });
}

TYPED_TEST(in_flight_test, two_engines_in_two_threads_do_not_meet) {
  on_every_device([](sycl::queue& queue) {
    const auto expected = sequence<TypeParam>(queue, 200 * 37);
    const auto make = [&](std::vector<std::uint32_t>& values) {
      TypeParam engine = seeded<TypeParam>(queue, 11);
      auto* r = sycl::malloc_shared<std::uint32_t>(200 * 37, queue);
      for (int i = 0; i < 200; ++i)
        generate(bits<>(), engine, 37, r + 37 * i);
      queue.wait();
      values.assign(r, r + 200 * 37);
      sycl::free(r, queue);
    };
    std::vector<std::uint32_t> one, two;
    std::thread thread([&] { make(one); });
    make(two);
    thread.join();
    expect_same(one, expected);
    expect_same(two, expected);
  });
}

// A failure inside earlier work reaches the asynchronous handler, and the work behind it still runs.
TEST(in_flight_errors_test, reach_the_asynchronous_handler) {
  std::vector<std::string> texts;
  sycl::queue queue(sycl::cpu_selector_v, [&](sycl::exception_list list) {
    for (const auto& pointer : list)
      texts.push_back(
          refusal<portability::task_error<computation_error>>([&] { std::rethrow_exception(pointer); }));
  });
  sycl::buffer<float, 1> buffer{sycl::range<1>(10)};
  queue.submit([&](sycl::handler& handler) {
    const portability::task_output<float> output(buffer, handler, sycl::property_list{});
    portability::host_task(handler, [=] {
      static_cast<void>(output);
      throw computation_error("rng", "generate", "simulated");
    });
  });
  philox4x32x10 engine(queue, 1);
  generate(uniform<float>(), engine, 10, buffer); // runs behind the failed work
  queue.wait_and_throw();
  ASSERT_EQ(texts.size(), 1u);
  EXPECT_THAT(texts[0], testing::EndsWith("kestro::hvl::rng::generate: computation error: simulated"));
  sycl::host_accessor values(buffer, sycl::read_only);
  EXPECT_NE(values[0], values[9]);
}

} // namespace
} // namespace kestro::hvl::rng::test
