// What is refused, with which exception and text; and that nothing has changed afterwards.
#include <limits>

#include "support.hpp"

namespace kestro::hvl::rng::test {
namespace {

template <class Engine>
class errors_test : public ::testing::Test {};
TYPED_TEST_SUITE(errors_test, all_engines, engine_names);

TYPED_TEST(errors_test, bad_arguments_leave_the_engine_where_it_was) {
  on_every_device([](sycl::queue& queue) {
    TypeParam engine = seeded<TypeParam>(queue, 1), untouched = engine;
    float value = 0;
    std::vector<float> memory(10, 7.0f);
    {
      sycl::buffer<float, 1> buffer(memory.data(), sycl::range<1>(memory.size()));
      const std::string n = "kestro::hvl::rng::generate: invalid argument: n";
      EXPECT_EQ(refusal<invalid_argument>([&] { generate(uniform<float>(), engine, -1, &value); }), n);
      EXPECT_EQ(refusal<invalid_argument>([&] { generate(uniform<float>(), engine, -1, buffer); }), n);
      EXPECT_EQ(refusal<invalid_argument>([&] { generate(uniform<float>(), engine, 11, buffer); }), n);
      EXPECT_EQ(refusal<invalid_argument>(
                    [&] { generate(uniform<float>(), engine, 1, static_cast<float*>(nullptr)); }),
                "kestro::hvl::rng::generate: invalid argument: r");
    }
    EXPECT_EQ(memory, std::vector<float>(10, 7.0f));
    expect_same(usm_values(bits<>(), engine, queue, 100), usm_values(bits<>(), untouched, queue, 100));
  });
}

TYPED_TEST(errors_test, a_device_that_is_neither_cpu_nor_gpu_is_refused) {
  if (sycl::device::get_devices(sycl::info::device_type::accelerator).empty())
    GTEST_SKIP() << "no such device";
  const sycl::device accelerator(sycl::accelerator_selector_v);
  const sycl::queue queue(accelerator);
  EXPECT_EQ(refusal<unsupported_device>([&] { TypeParam engine = seeded<TypeParam>(queue, 1); }),
            "kestro::hvl::rng::" + engine_names::GetName<TypeParam>(0) +
                ": unsupported device: " + accelerator.get_info<sycl::info::device::name>());
}

TYPED_TEST(errors_test, a_moved_from_engine_holds_nothing) {
  auto queue = devices().front().queue;
  TypeParam source = seeded<TypeParam>(queue, 1);
  const TypeParam target = std::move(source);
  float value;
  EXPECT_EQ(refusal<invalid_argument>([&] { generate(uniform<float>(), source, 1, &value); }),
            "kestro::hvl::rng::generate: invalid argument: engine");
  EXPECT_EQ(refusal<invalid_argument>([&] { get_state_size(source); }),
            "kestro::hvl::rng::get_state_size: invalid argument: engine");
  if constexpr (skips<TypeParam>) {
    EXPECT_THROW(source.skip_ahead(1), invalid_argument);
  }
  TypeParam copy_of_nothing = source;
  source = target; // and can be assigned to
  EXPECT_NO_THROW(get_state_size(source));
}

TYPED_TEST(errors_test, a_pair_that_is_not_offered_is_refused_by_name) {
  const std::string name = engine_names::GetName<TypeParam>(0);
  const bool has_bits = facts_of<TypeParam>().has_uniform_bits;
  on_every_device([&](sycl::queue& queue) {
    TypeParam engine = seeded<TypeParam>(queue, 1), untouched = engine;
    const std::string text =
        "kestro::hvl::rng::generate: unimplemented functionality: uniform_bits distribution and " + name +
        " engine combination";
    std::uint32_t low = 5;
    std::uint64_t wide[1] = {5};
    sycl::buffer<std::uint64_t, 1> buffer(wide, sycl::range<1>(1));
    const std::string expected = has_bits ? "no exception" : text;
    EXPECT_EQ(
        refusal<unimplemented>([&] { generate(uniform_bits<std::uint32_t>(), engine, 1, &low).wait(); }),
        expected);
    EXPECT_EQ(refusal<unimplemented>([&] { generate(uniform_bits<std::uint64_t>(), engine, 1, buffer); }),
              expected);
    if (!has_bits)
      expect_same(usm_values(bits<>(), engine, queue, 50), usm_values(bits<>(), untouched, queue, 50));
  });
}

template <class Distribution, class... Parameters>
std::string refused(Parameters... parameters) {
  return refusal<invalid_argument>([&] { Distribution d(parameters...); });
}

TEST(parameters_test, uniform_refuses_empty_and_endless_intervals) {
  const float nan = std::numeric_limits<float>::quiet_NaN(),
              infinite = std::numeric_limits<float>::infinity();
  const std::string order = "kestro::hvl::rng::uniform: invalid argument: a >= b";
  EXPECT_EQ(refused<uniform<float>>(1.0f, 1.0f), order);
  EXPECT_EQ(refused<uniform<float>>(2.0f, 1.0f), order);
  EXPECT_EQ(refused<uniform<float>>(nan, 1.0f), order);
  EXPECT_EQ(refused<uniform<float>>(0.0f, nan), order);
  EXPECT_EQ(refused<uniform<int>>(3, 3), order);
  EXPECT_NE(refused<uniform<float>>(-infinite, 1.0f), "no exception");
  EXPECT_NE(refused<uniform<float>>(-3e38f, 3e38f), "no exception");
  EXPECT_NE(refused<uniform<float>>(2e38f, 3e38f), "no exception");
  EXPECT_EQ(refused<uniform<float>>(-1.0f, 1.0f), "no exception");
  EXPECT_EQ(refused<uniform<int>>(std::numeric_limits<int>::min(), std::numeric_limits<int>::max()),
            "no exception");
}

TEST(uniform_test, integers_cover_their_interval_and_nothing_else) {
  on_every_device([](sycl::queue& queue) {
    philox4x32x10 engine(queue, 3);
    std::vector<int> seen(10);
    for (const int value : usm_values(uniform<int>(0, 10), engine, queue, 20000)) {
      ASSERT_GE(value, 0);
      ASSERT_LT(value, 10);
      ++seen[static_cast<std::size_t>(value)];
    }
    for (const int count : seen)
      EXPECT_NEAR(count, 2000, 5 * 43); // five standard deviations: one false alarm in 10^5
    const int lowest = std::numeric_limits<int>::min(), highest = std::numeric_limits<int>::max();
    double sum = 0;
    for (const int value :
         usm_values(uniform<int, uniform_method::accurate>(lowest, highest), engine, queue, 20000))
      sum += value;
    EXPECT_LT(std::abs(sum / 20000), 5 * 1.24e9 / 141);
    // float knows neither end; and a word that it scales to 9
    for (const int value : usm_values(uniform<int>(16777217, 16777218), engine, queue, 1000))
      ASSERT_EQ(value, 16777217);
    philox4x32x10 before_the_end(queue, 12345);
    before_the_end.skip_ahead(20180005);
    philox4x32x10 again = before_the_end;
    EXPECT_EQ(usm_values(uniform<float>(1, 9), again, queue, 1)[0], 9);
    EXPECT_EQ(usm_values(uniform<int>(1, 9), before_the_end, queue, 1)[0], 8);
  });
}

TEST(uniform_test, accurate_values_stay_in_the_interval) {
  on_every_device([](sycl::queue& queue) {
    mt19937 engine(queue, 3);
    const float a = 1.0f, b = 1.0f + 0x1p-22f; // rounding carries the standard method outside
    bool left = false;
    for (const float value : usm_values(uniform<float, uniform_method::accurate>(a, b), engine, queue, 20000))
      ASSERT_TRUE(value >= a && value <= b);
    for (const float value : usm_values(uniform<float>(-3.0f, 1e-3f), engine, queue, 20000))
      left = left || value < -3.0f || value > 1e-3f;
    EXPECT_FALSE(left);
  });
}

} // namespace
} // namespace kestro::hvl::rng::test
