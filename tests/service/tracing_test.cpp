// The pieces of call tracing, as one process sees them.
#include "service/demangle.hpp"
#include "service/device_facts.hpp"
#include "service/portability.hpp"
#include "service/traced_call.hpp"
#include "service/verbose.hpp"

#include <hvl/core.h>

#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <set>

#include "traced_device.hpp"
#include "waiting.hpp"

namespace {

namespace portability = kestro::hvl::portability;

using namespace kestro::hvl::gpu;
using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

std::string spell_time(double seconds, std::size_t room = 30) {
  char text[31];
  std::fill(std::begin(text), std::end(text), '#');
  char* cursor = text;
  const std::size_t before = room;
  print_time(cursor, room, seconds);
  EXPECT_EQ(before - room, static_cast<std::size_t>(cursor - text));
  EXPECT_EQ(*cursor, '\0');
  return text;
}

TEST(PrintTime, TakesTheLargestUnitOfWhichThereIsMoreThanOne) {
  EXPECT_EQ(spell_time(12.345), "12.35s");
  EXPECT_EQ(spell_time(0.25), "250.00ms");
  EXPECT_EQ(spell_time(0.0000123), "12.30us");
  EXPECT_EQ(spell_time(0.000000789), "789ns");
  EXPECT_EQ(spell_time(1e-9), "1ns");
}

TEST(PrintTime, IsStrictAtItsThresholds) {
  EXPECT_EQ(spell_time(1.0), "1000.00ms");
  EXPECT_EQ(spell_time(0.001), "1000.00us");
  EXPECT_EQ(spell_time(1e-6), "1000ns");
  EXPECT_EQ(spell_time(std::nextafter(1.0, 2.0)), "1.00s");
  EXPECT_EQ(spell_time(0.001 * (1 + 1e-12)), "1.00ms");
  EXPECT_EQ(spell_time(1e-6 * (1 + 1e-12)), "1.00us");
}

TEST(PrintTime, HasNoNumberForWhatIsNoDuration) {
  for (double none : {0.0, -0.0, -1.0, std::numeric_limits<double>::quiet_NaN()})
    EXPECT_EQ(spell_time(none), "nan");
}

TEST(PrintTime, IsCutAtTheRoom) {
  EXPECT_EQ(spell_time(12.345, 4), "12.3");
  EXPECT_EQ(spell_time(0.0, 0), "");
}

TEST(DeviceFacts, NameWhatTheyKnowAndOnlyThat) {
  std::set<std::string> generations;
  for (int code = 1; code <= 6; ++code)
    generations.insert(architecture_name(code));
  EXPECT_EQ(generations.size(), 6u);
  EXPECT_EQ(generations.count("Unknown_GPU"), 0u);
  for (int code : {-1, 0, 7})
    EXPECT_STREQ(architecture_name(code), "Unknown_GPU");
  EXPECT_STREQ(backend_name(0), "OpenCL");
  EXPECT_STREQ(backend_name(1), "Zerlin");
  for (int code : {-1, 2})
    EXPECT_STREQ(backend_name(code), "Unknown_backend");
#ifdef KESTRO_HVL_HAS_ZERLIN
  EXPECT_EQ(backend_code(sycl::device(sycl::gpu_selector_v).get_backend()), backend_zerlin);
#endif
  EXPECT_GE(tile_count(traced_device()), 1);
}

TEST(Demangle, GivesTheNameOfTheSource) {
  EXPECT_STREQ(demangle(typeid(std::pair<unsigned long, call_description>)).c_str(),
               "std::pair<unsigned long, kestro::hvl::gpu::call_description>");
}

// A queue that tells times, on a GPU where there is one; the header and the listing are printed before the test.
class TracedQueue : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(hvl_serv_set_verbose_output_file(nullptr), HVL_SERV_OK);
    hvl_serv_set_verbose(1);
    CaptureStdout();
    print_verbose_gpu_info(&queue_, "first", 0.0);
    GetCapturedStdout();
  }
  void TearDown() override { hvl_serv_set_verbose(0); }

  std::string printed(const char* description = "call", double host_time = 0.0) {
    CaptureStdout();
    print_verbose_gpu_info(&queue_, description, host_time);
    return GetCapturedStdout();
  }

  sycl::event slow_task() {
    return queue_.submit([](sycl::handler& handler) {
      portability::host_task(handler, [] { ::hvl::test::let_others_run(); });
    });
  }

  static double seconds_of(const sycl::event& event) {
    namespace profiling = sycl::info::event_profiling;
    return 1e-9 * static_cast<double>(event.get_profiling_info<profiling::command_end>() -
                                      event.get_profiling_info<profiling::command_start>());
  }

  static bool is_complete(const sycl::event& event) {
    return event.get_info<sycl::info::event::command_execution_status>() ==
           sycl::info::event_command_status::complete;
  }

  sycl::queue queue_{traced_device(), {sycl::property::queue::enable_profiling()}};
  const std::string on_ = traced_device_label() + "\n";
};

TEST_F(TracedQueue, PrintsOneWholeLine) {
  EXPECT_EQ(printed("a call"), "HVL_VERBOSE a call host:nan device:nan" + on_);
  EXPECT_EQ(printed("a call", 1.5), "HVL_VERBOSE a call host:1.50s device:nan" + on_);
  const std::string long_description(5000, 'x');
  EXPECT_EQ(printed(long_description.c_str()),
            "HVL_VERBOSE " + long_description + " host:nan device:nan" + on_);
}

TEST_F(TracedQueue, PrintsNothingWhileOffOrInsideAnotherCall) {
  verbose_depth_inc();
  EXPECT_EQ(printed(), "");
  verbose_depth_dec();
  hvl_serv_set_verbose(0);
  EXPECT_EQ(printed(), "");
  hvl_serv_set_verbose(1);
  EXPECT_NE(printed(), "");
}

TEST_F(TracedQueue, DeviceTimeSpansTheRegisteredEventsOfMode2AndForgetsThem) {
  sycl::event first = slow_task(), ignored = slow_task();
  sycl::event last = queue_.submit([&](sycl::handler& handler) {
    handler.depends_on({first, ignored});
    portability::host_task(handler, [] {});
  });
  verbose_register_event(ignored); // in mode 1
  hvl_serv_set_verbose(2);
  EXPECT_EQ(printed(), "HVL_VERBOSE call host:nan device:nan" + on_);

  // Later and earlier: the order of registration is not that of time.
  verbose_register_event(last);
  verbose_register_event(first);
  const auto end = last.get_profiling_info<sycl::info::event_profiling::command_end>();
  const auto start = first.get_profiling_info<sycl::info::event_profiling::command_start>();
  EXPECT_EQ(printed(),
            "HVL_VERBOSE call host:nan device:" + spell_time(static_cast<double>(end - start) * 1e-9) + on_);
  EXPECT_EQ(printed(), "HVL_VERBOSE call host:nan device:nan" + on_);

  // What a suppressed call registered belongs to the one around it.
  verbose_depth_inc();
  verbose_register_event(first);
  EXPECT_EQ(printed(), "");
  verbose_depth_dec();
  EXPECT_NE(printed(), "HVL_VERBOSE call host:nan device:nan" + on_);
}

TEST_F(TracedQueue, AnEventWithoutTimesIsNoFailure) {
  sycl::event untimed = sycl::queue(traced_device()).submit([](sycl::handler& handler) {
    portability::host_task(handler, [] {});
  });
  hvl_serv_set_verbose(2);
  verbose_register_event(untimed);
  EXPECT_EQ(printed(), "HVL_VERBOSE call host:nan device:nan" + on_);
}

TEST_F(TracedQueue, UsmWrappersWaitAndTimeInMode2Only) {
  hvl_serv_set_verbose(2);
  double time = 0.0;
  const sycl::event dependency = slow_task();
  verbose_usm_start(&time, {dependency});
  EXPECT_TRUE(is_complete(dependency));
  EXPECT_LT(time, 0.0);
  const sycl::event call = slow_task();
  verbose_usm_end(&time, call);
  EXPECT_TRUE(is_complete(call));
  EXPECT_GE(time, seconds_of(call));

  hvl_serv_set_verbose(1);
  time = 0.0;
  verbose_usm_start(&time, {});
  EXPECT_EQ(printed(), "") << "the start did not count";
  verbose_usm_end(&time, sycl::event());
  EXPECT_NE(printed(), "") << "the end did not count";
  EXPECT_EQ(time, 0.0);
}

template <class T>
class BufferWrappers : public TracedQueue {};
using result_types = testing::Types<float, double, std::int32_t, std::uint32_t, std::uint64_t>;
TYPED_TEST_SUITE(BufferWrappers, result_types);

// Also behind commands that only read, and without a change to the content.
TYPED_TEST(BufferWrappers, WaitForAllCommandsOnTheBuffer) {
  hvl_serv_set_verbose(2);
  std::vector<TypeParam> content(100, TypeParam(42));
  double time = 0.0;
  {
    sycl::buffer<TypeParam, 1> r(content.data(), sycl::range<1>(content.size()));
    const auto slow_reader = [&] {
      return this->queue_.submit([&](sycl::handler& handler) {
        const sycl::accessor<TypeParam, 1, sycl::access_mode::read, sycl::target::host_task> read(r, handler);
        portability::host_task(handler, [] { ::hvl::test::let_others_run(); });
      });
    };
    const sycl::event before = slow_reader();
    verbose_buffer_start(&time, r, &this->queue_);
    EXPECT_TRUE(this->is_complete(before));
    EXPECT_LT(time, 0.0);
    const sycl::event call = slow_reader();
    verbose_buffer_end(&time, r);
    EXPECT_TRUE(this->is_complete(call));
    EXPECT_GE(time, this->seconds_of(call));
  }
  EXPECT_EQ(content, std::vector<TypeParam>(100, TypeParam(42)));
}

struct some_distribution {};
struct some_engine {};

class TracedCall : public TracedQueue {
 protected:
  const call_description call_{typeid(some_distribution), typeid(some_engine), 1234567};
  const std::string names_ = "distribution = (anonymous namespace)::some_distribution, "
                             "engine = (anonymous namespace)::some_engine, n = 1234567";
};

TEST_F(TracedCall, ACallInsideAnotherPrintsNothing) {
  sycl::buffer<float, 1> r(1);
  CaptureStdout();
  traced_call outer(queue_, call_, r);
  {
    traced_call inner(queue_, call_, nullptr, {});
    inner.finish(sycl::event());
  }
  EXPECT_EQ(GetCapturedStdout(), "");
  CaptureStdout();
  outer.finish(sycl::event(), r);
  EXPECT_EQ(GetCapturedStdout(), "HVL_VERBOSE kestro::hvl::rng::generate Buffer call with parameters " +
                                     names_ + " host:nan device:nan" + on_);
}

TEST_F(TracedCall, OneThatThrowsPrintsNothingAndLeavesNoTrace) {
  for (int mode : {1, 2}) {
    hvl_serv_set_verbose(mode);
    CaptureStdout();
    try {
      traced_call call(queue_, call_, nullptr, {});
      throw 1;
    } catch (int) {
    }
    EXPECT_EQ(GetCapturedStdout(), "");
    EXPECT_NE(printed(), "") << "mode " << mode;
  }
}

// Another thread may switch while a call is under way: no half of a time is printed.
TEST_F(TracedCall, KeepsCountWhenTheModeChangesMeanwhile) {
  for (int before : {1, 2})
    for (int after : {0, 1, 2}) {
      if (before == 2 && after == 2)
        continue;
      hvl_serv_set_verbose(before);
      CaptureStdout();
      traced_call call(queue_, call_, nullptr, {});
      hvl_serv_set_verbose(after);
      call.finish(sycl::event());
      const std::string line = GetCapturedStdout();
      if (after == 0)
        EXPECT_EQ(line, "");
      else
        EXPECT_THAT(line, testing::HasSubstr(" host:nan device:nan" + on_)) << before << " to " << after;
      hvl_serv_set_verbose(1);
      EXPECT_NE(printed(), "") << before << " to " << after;
    }
}

} // namespace
