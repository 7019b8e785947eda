#include <sycl/backend/zerlin.hpp>
#include <sycl/sycl.hpp>

#include <gtest/gtest.h>

#include <optional>

namespace {

using sycl::backend;
namespace zerlin = sycl::zerlin;

std::error_code code_thrown_by(const std::function<void()>& f) {
  try {
    f();
  } catch (const sycl::exception& e) {
    return e.code();
  }
  return {};
}

TEST(zerlin, makes_equal_objects_from_handles) {
  sycl::queue q(sycl::gpu_selector_v, sycl::property::queue::in_order());
  ASSERT_EQ(q.get_backend(), backend::zerlin);
  const sycl::device device = q.get_device();
  const sycl::context context = q.get_context();
  EXPECT_EQ(sycl::make_platform<backend::zerlin>(sycl::get_native<backend::zerlin>(device.get_platform())),
            device.get_platform());
  EXPECT_EQ(sycl::make_device<backend::zerlin>(sycl::get_native<backend::zerlin>(device)), device);
  const sycl::context same_context = sycl::make_context<backend::zerlin>(
      {sycl::get_native<backend::zerlin>(context), {device}, zerlin::ownership::keep});
  EXPECT_EQ(same_context, context);
  const sycl::queue same_queue = sycl::make_queue<backend::zerlin>(
      {sycl::get_native<backend::zerlin>(q), device, zerlin::ownership::keep}, same_context);
  EXPECT_EQ(same_queue, q);
  EXPECT_TRUE(same_queue.is_in_order());
  sycl::event event = q.single_task([] {});
  EXPECT_EQ(sycl::make_event<backend::zerlin>({sycl::get_native<backend::zerlin>(event)}, context), event);
  event.wait();
}

TEST(zerlin, keeps_the_driver_object_alive_and_in_order) {
  int value = 0;
  std::optional<sycl::queue> first(std::in_place, sycl::gpu_selector_v, sycl::property::queue::in_order());
  sycl::queue second = sycl::make_queue<backend::zerlin>(
      {sycl::get_native<backend::zerlin>(*first), first->get_device()}, first->get_context());
  for (int i = 0; i < 50; ++i) {
    first->submit(
        [&](sycl::handler& h) { h.host_task([&value, i] { value = value == 2 * i ? 2 * i + 1 : -1; }); });
    second.submit(
        [&](sycl::handler& h) { h.host_task([&value, i] { value = value == 2 * i + 1 ? 2 * i + 2 : -1; }); });
  }
  first.reset();
  second.wait();
  EXPECT_EQ(value, 100);
}

TEST(zerlin, shows_handles_inside_host_tasks) {
  sycl::queue q(sycl::gpu_selector_v);
  bool same = false;
  q.submit([&](sycl::handler& h) {
    h.host_task([&](sycl::interop_handle interop) {
      same =
          interop.get_backend() == backend::zerlin &&
          interop.get_native_queue<backend::zerlin>() == sycl::get_native<backend::zerlin>(q) &&
          interop.get_native_context<backend::zerlin>() ==
              sycl::get_native<backend::zerlin>(q.get_context()) &&
          interop.get_native_device<backend::zerlin>() == sycl::get_native<backend::zerlin>(q.get_device());
    });
  });
  q.wait();
  EXPECT_TRUE(same);
}

TEST(zerlin, refuses_what_is_not_its_own) {
  sycl::queue host(sycl::cpu_selector_v);
  sycl::queue gpu(sycl::gpu_selector_v);
  const std::error_code mismatch = make_error_code(sycl::errc::backend_mismatch);
  const std::error_code invalid = make_error_code(sycl::errc::invalid);
  EXPECT_EQ(code_thrown_by([&] { sycl::get_native<backend::zerlin>(host); }), mismatch);
  EXPECT_EQ(code_thrown_by([&] { sycl::get_native<backend::zerlin>(sycl::event()); }), mismatch);
  EXPECT_EQ(code_thrown_by([] { sycl::make_device<backend::zerlin>(nullptr); }), invalid);
  EXPECT_EQ(code_thrown_by([&] {
              sycl::make_context<backend::zerlin>(
                  {sycl::get_native<backend::zerlin>(gpu.get_context()), {host.get_device()}});
            }),
            invalid);
  EXPECT_EQ(code_thrown_by([&] {
              sycl::make_queue<backend::zerlin>({sycl::get_native<backend::zerlin>(gpu), gpu.get_device()},
                                                sycl::context(gpu.get_device()));
            }),
            invalid);
  EXPECT_EQ(code_thrown_by([&] {
              sycl::make_queue<backend::zerlin>({sycl::get_native<backend::zerlin>(gpu), gpu.get_device()},
                                                gpu.get_context(), [](sycl::exception_list) {});
            }),
            make_error_code(sycl::errc::feature_not_supported));
}

} // namespace
