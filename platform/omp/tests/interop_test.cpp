#include <gtest/gtest.h>

#include <hvl/omp_interop.h>

#include <atomic>
#include <cstdint>
#include <thread>
#include <vector>

namespace {

int natives[4];
void* poison = &poison;

hvl_omp_interop_description description_of(int runtime) {
  hvl_omp_interop_description d{};
  d.foreign_runtime = runtime;
  d.device_number = 7;
  d.in_order = 3; // any value but 0 is "yes"
  d.platform = &natives[0];
  d.device = &natives[1];
  d.context = &natives[2];
  d.queue = &natives[3];
  return d;
}

class interop {
 public:
  explicit interop(const hvl_omp_interop_description& d) : handle_(hvl_omp_interop_create(&d)) {}
  explicit interop(int runtime) : interop(description_of(runtime)) {}
  interop(const interop&) = delete;
  ~interop() { EXPECT_EQ(hvl_omp_interop_destroy(&handle_), HVL_TGT_OK); }
  operator hvl_omp_interop() const { return handle_; }

  void complete() const {
    void* function = nullptr;
    ASSERT_EQ(hvl_tgt_get_interop_property(handle_, HVL_TGT_COMPLETED, &function), HVL_TGT_OK);
    reinterpret_cast<hvl_omp_completed_function>(function)(handle_);
  }

 private:
  hvl_omp_interop handle_;
};

struct integer_property {
  int identifier, code;
  std::intptr_t value;
};

TEST(omp_get_interop_int_function, answers_every_property_as_the_standard_says) {
  const interop object(HVL_OMP_FR_ZERLIN);
  const integer_property expected[] = {{-1, 0, 6},  {-2, -5, 0}, {-3, 1, 0},  {-4, -5, 0}, {-5, 0, 7},
                                       {-6, -4, 0}, {-7, -4, 0}, {-8, -4, 0}, {-9, -4, 0}, {-10, -2, 0},
                                       {0, -2, 0},  {9, -2, 0},  {10, 0, 1},  {11, -2, 0}};
  for (const auto& [identifier, code, value] : expected) {
    int got = 99;
    EXPECT_EQ(omp_get_interop_int(object, identifier, &got), value) << identifier;
    EXPECT_EQ(got, code) << identifier;
    EXPECT_EQ(omp_get_interop_int(object, identifier, nullptr), value);
  }
}

TEST(omp_get_interop_int_function, tells_none_and_foreign_objects_apart) {
  int code = 99;
  EXPECT_EQ(omp_get_interop_int(nullptr, HVL_OMP_IPR_FR_ID, &code), 0);
  EXPECT_EQ(code, HVL_OMP_IRC_EMPTY);
  std::uint64_t stranger[16] = {};
  EXPECT_EQ(omp_get_interop_int(stranger, HVL_OMP_IPR_FR_ID, &code), 0);
  EXPECT_EQ(code, HVL_OMP_IRC_OTHER);
}

TEST(interop_property, gives_the_native_handles_and_whose_they_are) {
  for (const int runtime : {HVL_OMP_FR_OPENCL, HVL_OMP_FR_SYCL, HVL_OMP_FR_ZERLIN}) {
    const interop object(runtime);
    for (int number = HVL_TGT_PLATFORM; number <= HVL_TGT_QUEUE; ++number) {
      void* value = poison;
      EXPECT_EQ(hvl_tgt_get_interop_property(object, number, &value), HVL_TGT_OK);
      EXPECT_EQ(value, &natives[number - HVL_TGT_PLATFORM]);
    }
    void* backend = poison;
    EXPECT_EQ(hvl_tgt_get_interop_property(object, HVL_TGT_BACKEND, &backend), HVL_TGT_OK);
    EXPECT_EQ(reinterpret_cast<std::intptr_t>(backend), runtime == HVL_OMP_FR_OPENCL ? 0 : 1);
  }
}

TEST(interop_property, refuses_what_is_not_there_and_leaves_the_value) {
  auto sparse = description_of(HVL_OMP_FR_OPENCL);
  sparse.platform = sparse.device = sparse.queue = nullptr;
  const interop object(sparse);
  void* value = poison;
  for (const int number : {HVL_TGT_PLATFORM, HVL_TGT_DEVICE, HVL_TGT_QUEUE})
    EXPECT_EQ(hvl_tgt_get_interop_property(object, number, &value), HVL_TGT_NO_VALUE);
  for (const int number : {-1, 0, 3, 10})
    EXPECT_EQ(hvl_tgt_get_interop_property(object, number, &value), HVL_TGT_NO_PROPERTY);
  EXPECT_EQ(hvl_tgt_get_interop_property(nullptr, HVL_TGT_CONTEXT, &value), HVL_TGT_BAD_INTEROP);
  EXPECT_EQ(hvl_tgt_get_interop_property(object, HVL_TGT_CONTEXT, nullptr), HVL_TGT_BAD_ARGUMENT);
  EXPECT_EQ(value, poison);
}

TEST(interop_object, is_made_only_from_a_known_runtime_and_a_context) {
  for (const int runtime : {0, 1, 2, 5, 7}) {
    const auto d = description_of(runtime);
    EXPECT_EQ(hvl_omp_interop_create(&d), nullptr) << runtime;
  }
  auto without_context = description_of(HVL_OMP_FR_OPENCL);
  without_context.context = nullptr;
  EXPECT_EQ(hvl_omp_interop_create(&without_context), nullptr);
  EXPECT_EQ(hvl_omp_interop_create(nullptr), nullptr);
  hvl_omp_interop none = nullptr;
  EXPECT_EQ(hvl_omp_interop_destroy(&none), HVL_TGT_BAD_INTEROP);
  EXPECT_EQ(hvl_omp_interop_destroy(nullptr), HVL_TGT_BAD_ARGUMENT);
  EXPECT_EQ(hvl_omp_interop_completions(nullptr), HVL_TGT_BAD_INTEROP);
  EXPECT_EQ(hvl_omp_interop_wait(nullptr, 0, 0), HVL_TGT_BAD_INTEROP);
}

TEST(completions, are_counted_after_the_callback_and_seen_by_waiters) {
  struct seen {
    std::atomic<int> calls{0};
    std::int64_t count_at_first_call = -1;
  } record;
  auto d = description_of(HVL_OMP_FR_OPENCL);
  d.user_data = &record;
  d.on_completed = [](hvl_omp_interop object, void* user_data) {
    auto& r = *static_cast<seen*>(user_data);
    if (r.calls++ == 0)
      r.count_at_first_call = hvl_omp_interop_completions(object);
  };
  const interop object(d);
  EXPECT_EQ(hvl_omp_interop_wait(object, 0, 0), HVL_TGT_OK);
  EXPECT_EQ(hvl_omp_interop_wait(object, 1, 1), HVL_TGT_NO_VALUE);
  object.complete();
  EXPECT_EQ(record.count_at_first_call, 0);
  EXPECT_EQ(hvl_omp_interop_completions(object), 1);
  EXPECT_EQ(hvl_omp_interop_wait(object, 2, 1), HVL_TGT_NO_VALUE);

  constexpr int threads = 4, each = 250;
  std::vector<std::jthread> reporters;
  for (int t = 0; t < threads; ++t)
    reporters.emplace_back([&] {
      for (int i = 0; i < each; ++i)
        object.complete();
    });
  EXPECT_EQ(hvl_omp_interop_wait(object, 1 + threads * each, INT64_MAX), HVL_TGT_OK);
  EXPECT_EQ(record.calls, 1 + threads * each);
}

// The waiter destroys the object while the reporting thread is still on its way out of the completion function.
TEST(completions, leave_the_object_alone_once_counted) {
  for (int round = 0; round < 2000; ++round) {
    std::jthread reporter;
    const interop object(HVL_OMP_FR_ZERLIN);
    void* function = nullptr;
    ASSERT_EQ(hvl_tgt_get_interop_property(object, HVL_TGT_COMPLETED, &function), HVL_TGT_OK);
    const hvl_omp_interop handle = object;
    reporter = std::jthread([=] { reinterpret_cast<hvl_omp_completed_function>(function)(handle); });
    ASSERT_EQ(hvl_omp_interop_wait(object, 1, -1), HVL_TGT_OK);
  }
}

} // namespace
