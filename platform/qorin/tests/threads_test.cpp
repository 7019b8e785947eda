// Many threads at once; run it under the thread sanitizer.
#include <sycl/sycl.hpp>

#include <gtest/gtest.h>

#include <oneapi/tbb/parallel_for.h>

#include <atomic>
#include <thread>

namespace {

template <class Body>
void on_threads(int count, const Body& body) {
  std::vector<std::thread> threads;
  for (int t = 0; t < count; ++t)
    threads.emplace_back([&body, t] { body(t); });
  for (std::thread& thread : threads)
    thread.join();
}

TEST(threads, share_queues_and_buffers) {
  sycl::queue in_order{sycl::property::queue::in_order()};
  sycl::queue out_of_order{sycl::gpu_selector_v};
  sycl::buffer<int> a{sycl::range<1>(64)}, b{sycl::range<1>(64)};
  {
    sycl::host_accessor zero_a(a), zero_b(b);
    std::fill(zero_a.begin(), zero_a.end(), 0);
    std::fill(zero_b.begin(), zero_b.end(), 0);
  }
  constexpr int rounds = 150;
  on_threads(4, [&](int t) {
    for (int i = 0; i < rounds; ++i) {
      sycl::queue& q = (t + i) % 2 ? in_order : out_of_order;
      sycl::buffer<int>& first = t % 2 ? a : b; // opposite orders: entering both must be one step
      sycl::buffer<int>& second = t % 2 ? b : a;
      sycl::event e = q.submit([&](sycl::handler& h) {
        sycl::accessor x(first, h), y(second, h);
        h.parallel_for(64, [=](sycl::id<1> k) {
          x[k] += 1;
          y[k] += 2;
        });
      });
      if (i % 10 == 0)
        e.wait();
    }
    in_order.wait();
    out_of_order.wait();
  });
  sycl::host_accessor sum_a(a), sum_b(b);
  for (int k = 0; k < 64; ++k) {
    EXPECT_EQ(sum_a[k], 4 * rounds * 3 / 2);
    EXPECT_EQ(sum_b[k], 4 * rounds * 3 / 2);
  }
}

TEST(threads, enter_the_users_of_one_buffer_without_pause) {
  sycl::buffer<int> shared{sycl::range<1>(1)};
  {
    sycl::host_accessor zero(shared);
    zero[0] = 0;
  }
  constexpr int rounds = 3000;
  on_threads(4, [&](int) {
    sycl::queue q; // of its own: nothing but the buffer is shared
    for (int i = 0; i < rounds; ++i)
      q.submit([&](sycl::handler& h) {
        sycl::accessor value(shared, h, sycl::read_write_host_task);
        h.host_task([=] { value[0] += 1; });
      });
    q.wait();
  });
  EXPECT_EQ(sycl::host_accessor(shared)[0], 4 * rounds);
}

TEST(threads, wait_for_one_event_together) {
  sycl::queue q;
  for (int round = 0; round < 100; ++round) {
    int value = 0;
    sycl::event first = q.submit([&](sycl::handler& h) { h.host_task([&] { value = 1; }); });
    sycl::event e = q.submit([&](sycl::handler& h) {
      h.depends_on(first);
      h.host_task([&] { value *= 5; });
    });
    std::atomic<int> right{0};
    on_threads(3, [&](int) {
      sycl::event mine = e;
      mine.wait();
      right += value == 5;
    });
    ASSERT_EQ(right.load(), 3);
  }
}

TEST(threads, kernels_write_what_the_waiting_thread_reads) {
  sycl::queue q{sycl::gpu_selector_v, sycl::property::queue::in_order()};
  std::vector<int> values(200'000, 0);
  for (int round = 1; round <= 5; ++round) {
    q.parallel_for(values.size(), [p = values.data()](sycl::id<1> i) { p[i] += static_cast<int>(i); });
    q.wait();
    for (std::size_t i = 0; i < values.size(); i += 997)
      ASSERT_EQ(values[i], static_cast<int>(i) * round);
  }
}

TEST(threads, host_tasks_may_use_tbb_and_wait_within) {
  sycl::queue q;
  std::atomic<long> sum{0};
  for (int i = 0; i < 16; ++i)
    q.submit([&](sycl::handler& h) {
      h.host_task([&] {
        oneapi::tbb::parallel_for(0, 100, [&](int k) {
          if (k == 50)
            q.submit([&](sycl::handler& inner) { inner.host_task([&] { sum += 1000; }); }).wait();
          sum += 1;
        });
      });
    });
  q.wait();
  EXPECT_EQ(sum.load(), 16 * 1100);
  oneapi::tbb::parallel_for(0, 64, [&](int) { // waiting on threads of TBB itself
    q.parallel_for(10'000, [&](sycl::id<1>) { sum.fetch_add(1, std::memory_order_relaxed); }).wait();
  });
  EXPECT_EQ(sum.load(), 16 * 1100 + 640'000);
}

TEST(threads, allocate_and_query_memory) {
  sycl::queue q;
  on_threads(4, [&](int) {
    for (int i = 1; i < 200; ++i) {
      char* memory = sycl::malloc_shared<char>(static_cast<std::size_t>(i) * 100, q);
      ASSERT_EQ(sycl::get_pointer_type(memory + i, q.get_context()), sycl::usm::alloc::shared);
      sycl::free(memory, q);
    }
  });
}

} // namespace
