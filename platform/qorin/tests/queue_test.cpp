#include <sycl/sycl.hpp>

#include <gtest/gtest.h>

namespace {

TEST(queue, runs_range_kernels_with_every_kind_of_index) {
  sycl::queue q;
  constexpr int count = 1000;
  int* values = sycl::malloc_shared<int>(count, q);
  const auto expect_times = [&](int factor) {
    for (int i = 0; i < count; ++i)
      ASSERT_EQ(values[i], factor * i);
  };
  q.parallel_for(sycl::range<1>(count), [=](sycl::id<1> i) { values[i] = static_cast<int>(i); }).wait();
  expect_times(1);
  q.parallel_for(count, [=](int i) { values[i] = 2 * i; }).wait();
  expect_times(2);
  q.parallel_for(sycl::range(count), [=](sycl::item<1> i) {
     values[i] = 3 * static_cast<int>(i.get_linear_id());
   }).wait();
  expect_times(3);
  sycl::free(values, q);
}

TEST(queue, buffers_order_kernels_and_host_tasks) {
  sycl::queue q{sycl::gpu_selector_v};
  std::vector<int> values(100000, 1);
  {
    sycl::buffer<int, 1> here(values);
    sycl::buffer<int, 1> there{sycl::range<1>(values.size())};
    for (int round = 0; round < 5; ++round) {
      q.submit([&](sycl::handler& h) {
        sycl::accessor in(here, h, sycl::read_only);
        sycl::accessor out{there, h, sycl::write_only, sycl::no_init};
        h.parallel_for(values.size(), [=](sycl::item<1> i) { out[i] = in[i] + 1; });
      });
      q.submit([&](sycl::handler& h) {
        auto in = there.get_access<sycl::access_mode::read, sycl::target::host_task>(h);
        auto out = here.get_access<sycl::access_mode::write, sycl::target::host_task>(h);
        h.host_task([=] { std::copy(in.begin(), in.end(), out.begin()); });
      });
    }
    sycl::host_accessor seen(here, sycl::read_only);
    EXPECT_EQ(seen[99999], 6);
  }
  EXPECT_EQ(values, std::vector<int>(100000, 6));
}

} // namespace
