// What the library keeps to itself: the protected region, the completion threads, the state conversions.
#include "offload/catch_and_report.hpp"
#include "offload/completion_threads.hpp"
#include "offload/create_engine.hpp"
#include "offload/generator.hpp"

#include "engines/digital_state.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <kestro/hvl/exceptions.hpp>

#include "waiting.hpp"

namespace kestro::hvl::rng::detail {
namespace {

template <class Work>
std::string line_of(const Work& work, std::int32_t status) {
  testing::internal::CaptureStderr();
  EXPECT_EQ(openmp::catch_and_report(work), status);
  return testing::internal::GetCapturedStderr();
}

TEST(catch_and_report, prints_one_line_for_each_kind_of_exception) {
  EXPECT_EQ(line_of([] {}, 0), "");
  EXPECT_EQ(line_of([] { throw kestro::hvl::exception("rng", "f", "50%"); }, -2),
            "KestroHVL RNG: kestro::hvl::exception: what: kestro::hvl::rng::f: 50%\n");
  EXPECT_EQ(line_of([] { throw sycl::exception(sycl::make_error_code(sycl::errc::invalid), "why"); }, -2),
            "KestroHVL RNG: sycl::exception what: why \n");
  EXPECT_EQ(line_of([] { throw std::runtime_error("why"); }, -2),
            "KestroHVL RNG: std::exception what: why\n");
  EXPECT_EQ(line_of([] { throw 7; }, -2), "KestroHVL RNG: unknown exception occured during Qorin++ call");
}

TEST(catch_and_report, prints_when_everything_has_been_released) {
  struct loud {
    ~loud() { std::fputs("released; ", stderr); }
  };
  EXPECT_EQ(line_of(
                [] {
                  const loud held;
                  throw std::runtime_error("why");
                },
                -2),
            "released; KestroHVL RNG: std::exception what: why\n");
}

TEST(completion_threads, run_side_by_side_and_are_joined) {
  constexpr int count = 300;
  std::atomic<int> arrived{0}, ended{0};
  {
    openmp::completion_threads threads;
    for (int t = 0; t < count; ++t)
      threads.start([&] {
        ++arrived;
        while (arrived < count) // only if all are there at once
          std::this_thread::yield();
        ::hvl::test::let_others_run();
        ++ended;
      });
  }
  EXPECT_EQ(ended, count);
}

std::vector<unsigned char> state_of(vqs_stream stream) {
  std::vector<unsigned char> bytes(static_cast<std::size_t>(vqsGetStreamSize_64(stream)));
  EXPECT_EQ(vqsSaveStreamM_64(stream, bytes.data()), 0);
  return bytes;
}

TEST(create_engine, makes_gpu_implementations_from_seeds_words_engines_and_streams) {
  using engine = philox4x32x10;
  const sycl::queue queue(sycl::gpu_selector_v);
  const std::uint32_t words[] = {1, 2, 3, 4, 5, 6};
  engine_base_impl<engine>* made[] = {gpu::create_engine<engine>(queue, 7),
                                      gpu::create_engine<engine>(queue, 6, words)};
  vqs_stream expected[] = {nullptr, nullptr};
  ASSERT_EQ(vqsNewStream_64(&expected[0], VQS_ENGINE_PHILOX4X32X10, 7), 0);
  ASSERT_EQ(vqsNewStreamEx_64(&expected[1], VQS_ENGINE_PHILOX4X32X10, 6, words), 0);
  for (int i = 0; i < 2; ++i) {
    const auto state = state_of(expected[i]);
    engine_base_impl<engine>* const from_engine = gpu::create_engine<engine>(queue, made[i]);
    engine_base_impl<engine>* const from_stream = gpu::create_engine<engine>(queue, expected[i]);
    EXPECT_EQ(vqsSkipAheadStream_64(expected[i], 5), 0); // of which the copies know nothing
    made[i]->skip_ahead(9);
    for (engine_base_impl<engine>* impl : {from_engine, from_stream}) {
      EXPECT_EQ(state_of(impl->stream().get()), state);
      EXPECT_NE((dynamic_cast<engine_base_impl_backend<engine, device_type::gpu>*>(impl)), nullptr);
      gpu::delete_engine<engine>(queue, impl);
    }
    gpu::delete_engine<engine>(queue, made[i]);
    EXPECT_EQ(vqsDeleteStream_64(&expected[i]), 0);
  }
}

TEST(create_engine, makes_the_member_that_is_asked_for) {
  const sycl::queue queue(sycl::gpu_selector_v);
  const std::uint32_t words[] = {1, 2, 3, 4};
  const auto identifier = [](engine_base_impl<wichmann_hill>* made) {
    const std::unique_ptr<engine_base_impl<wichmann_hill>> owner(made);
    return vqsEngineOfStream(owner->stream().get());
  };
  for (const std::uint32_t member : {0u, 1u, 272u}) {
    const std::int32_t expected = VQS_ENGINE_WICHMANN_HILL + static_cast<std::int32_t>(member);
    EXPECT_EQ(identifier(gpu::create_engine<wichmann_hill>(queue, 7, member)), expected);
    EXPECT_EQ(identifier(gpu::create_engine<wichmann_hill>(queue, 4, words, member)), expected);
    const std::unique_ptr<engine_base_impl<wichmann_hill>> original(
        gpu::create_engine<wichmann_hill>(queue, 7, member));
    EXPECT_EQ(identifier(gpu::create_engine<wichmann_hill>(queue, original.get())), expected);
    EXPECT_EQ(identifier(gpu::create_engine<wichmann_hill>(queue, original->stream().get())), expected);
  }
  EXPECT_THROW(gpu::create_engine<wichmann_hill>(queue, 7, 273), invalid_argument);
  EXPECT_THROW(gpu::create_engine<wichmann_hill>(queue, 4, words, 273), invalid_argument);
  EXPECT_THROW(gpu::create_engine<ars5>(queue, 7, 1), invalid_argument);
}

TEST(create_engine, makes_mrg32k3a_in_its_modes_from_seeds_and_words) {
  const sycl::queue queue(sycl::gpu_selector_v);
  const std::uint32_t words[] = {1, 2, 3, 4, 5, 6};
  for (const mrg32k3a_any_mode mode :
       {mrg32k3a_any_mode(mrg32k3a_mode::optimal()), mrg32k3a_any_mode(mrg32k3a_mode::custom{5})}) {
    std::unique_ptr<engine_base_impl<mrg32k3a>> seeded(gpu::create_engine<mrg32k3a>(queue, 7, mode));
    std::unique_ptr<engine_base_impl<mrg32k3a>> listed(gpu::create_engine<mrg32k3a>(queue, 6, words, mode));
    const auto expected = std::visit(mrg32k3a_substreams(), mode);
    EXPECT_EQ(seeded->stream().record<vqs_mrg32k3a_record>().substreams, expected);
    EXPECT_EQ(listed->stream().record<vqs_mrg32k3a_record>().substreams, expected);
    EXPECT_EQ(listed->stream().record<vqs_mrg32k3a_record>().x1, 2u);

    // What comes out of a stream of the host-side interface is the one sequence.
    std::unique_ptr<engine_base_impl<mrg32k3a>> from_stream(
        gpu::create_engine<mrg32k3a>(queue, listed->stream().get()));
    EXPECT_EQ(from_stream->stream().record<vqs_mrg32k3a_record>().substreams, 0u);
    EXPECT_EQ(from_stream->stream().record<vqs_mrg32k3a_record>().x1, 2u);
  }
}

TEST(create_engine, does_not_look_at_a_failed_copy_of_a_stream) {
  const sycl::queue queue(sycl::gpu_selector_v);
  std::uint64_t stranger[16] = {};
  engine_base_impl<philox4x32x10>* impl = nullptr;
  EXPECT_NO_THROW(impl = gpu::create_engine<philox4x32x10>(queue, static_cast<void*>(stranger)));
  EXPECT_EQ(impl->stream().get(), nullptr);
  gpu::delete_engine<philox4x32x10>(queue, impl);
}

constexpr std::uint32_t poison = 0xA5A5A5A5;

TEST(mt2203_conversion, writes_the_words_before_the_devices_position) {
  sycl::queue queue(sycl::gpu_selector_v);
  std::vector<std::uint32_t> values(1000);
  mt2203 engine(queue, 7, 77);
  auto& impl = engine_access::impl<mt2203>(engine, "test");
  for (const std::int64_t n : {1, 68, 69, 1000}) {
    sycl::buffer<std::uint32_t, 1> buffer(values.data(), static_cast<std::size_t>(n));
    generate(bits<>(), engine, n, buffer);
    vqs_stream stream = nullptr;
    ASSERT_EQ(vqsNewStream_64(&stream, VQS_ENGINE_MT2203 + 77, 99), VQS_STATUS_OK);
    const stream_handle owner(stream);
    auto& record = owner.record<vqs_mt2203_record>();
    const auto before = record;
    ring_state_to_stream(impl, stream);
    EXPECT_EQ(record.position, 69u);
    EXPECT_EQ(record.matrix, before.matrix);
    EXPECT_EQ(std::memcmp(&record.header, &before.header, sizeof before.header), 0);
    std::vector<std::uint32_t> on_host(200), on_device(200);
    ASSERT_EQ(viRngUniformBits_64(0, stream, 200, on_host.data()), VQS_STATUS_OK);
    mt2203 copy = engine;
    {
      sycl::buffer<std::uint32_t, 1> output(on_device.data(), on_device.size());
      generate(bits<>(), copy, 200, output);
    }
    EXPECT_EQ(on_host, on_device);
  }
}

/// A sobol record of `dimensions` dimensions whose direction numbers name their place.
std::vector<std::uint32_t> sobol_record(std::uint32_t dimensions) {
  std::vector<std::uint32_t> record(64 + 33 * dimensions, poison);
  record[4] = 500; // the next point
  record[5] = 2;   // the next coordinate
  record[6] = dimensions;
  record[7] = 1; // numbers of the caller's own
  for (std::uint32_t d = 0; d < dimensions; ++d)
    for (std::uint32_t k = 0; k < 32; ++k)
      record[64 + 33 * d + k] = (d + 1) * 0x01000193 ^ 0x80000000 >> k;
  return record;
}

TEST(sobol_conversion, takes_over_the_position_and_the_direction_numbers) {
  const sycl::queue queue;
  const auto record = sobol_record(5);
  const auto untouched = record;
  sobol_gpu_state engine;
  sobol_vqs_stream_to_gpu_state(queue, engine, record.data());
  EXPECT_EQ(engine.dimensions, 5u);
  EXPECT_EQ(engine.point, 500u);
  EXPECT_EQ(engine.coordinate, 2u);
  EXPECT_EQ(engine.own, 1u);
  for (std::uint32_t d = 0; d < 5; ++d) {
    const std::uint32_t* v = &record[64 + 33 * d];
    for (std::uint32_t k = 0; k < 32; ++k)
      EXPECT_EQ(engine.direction_numbers.get()[32 * d + k], v[k]);
    // A point computed from the bits of its number is the one computed from its Gray code.
    for (const std::uint32_t number : {0u, 1u, 6u, 500u, 0xDEADBEEFu}) {
      const std::uint32_t gray = number ^ number >> 1;
      std::uint32_t expected = 0, got = 0;
      for (std::uint32_t k = 0; k < 32; ++k) {
        expected ^= (gray >> k & 1) != 0 ? v[k] : 0;
        got ^= (number >> k & 1) != 0 ? engine.index_bits.get()[32 * d + k] : 0;
      }
      EXPECT_EQ(got, expected) << "dimension " << d << ", point " << number;
    }
  }
  EXPECT_EQ(record, untouched);
}

TEST(sobol_conversion, without_memory_leaves_the_engine_as_it_was) {
  const sycl::queue queue;
  sobol_gpu_state engine;
  sobol_vqs_stream_to_gpu_state(queue, engine, sobol_record(2).data());
  const auto directions = engine.direction_numbers;
  setenv("QORIN_ALLOCATION_LIMIT", "300", 1);
  sobol_vqs_stream_to_gpu_state(queue, engine, sobol_record(3).data());
  unsetenv("QORIN_ALLOCATION_LIMIT");
  EXPECT_EQ(engine.dimensions, 2u);
  EXPECT_EQ(engine.direction_numbers, directions);
}

} // namespace
} // namespace kestro::hvl::rng::detail
