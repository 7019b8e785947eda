// The graph of commands: dependencies, helping, asynchronous submission, and what completion lets go of.
#include <sycl/sycl.hpp>

#include <gmock/gmock.h>

#include <atomic>
#include <chrono>
#include <future>
#include <thread>

#include <malloc.h>

namespace {

using status = sycl::info::event_command_status;

status status_of(const sycl::event& e) {
  return e.get_info<sycl::info::event::command_execution_status>();
}

/// A host task that stays in its place until opened.
class gate {
 public:
  sycl::event submit(sycl::queue& q, const std::vector<sycl::event>& after = {}) {
    return q.submit([&](sycl::handler& h) {
      h.depends_on(after);
      h.host_task([opened = opened_] { opened.wait(); });
    });
  }
  void open() { promise_.set_value(); }

 private:
  std::promise<void> promise_;
  std::shared_future<void> opened_ = promise_.get_future().share();
};

TEST(graph, a_blocking_host_task_does_not_hold_up_the_submitting_thread) {
  sycl::queue q;
  gate g;
  sycl::event blocked = g.submit(q);
  sycl::event after = g.submit(q, {blocked});
  sycl::event independent = q.submit([](sycl::handler& h) { h.host_task([] {}); });
  independent.wait();
  EXPECT_NE(status_of(blocked), status::complete);
  EXPECT_EQ(status_of(after), status::submitted);
  EXPECT_EQ(after.get_wait_list(), std::vector{blocked});
  g.open();
  after.wait();
  EXPECT_EQ(status_of(blocked), status::complete);
  EXPECT_TRUE(after.get_wait_list().empty());
}

TEST(graph, submissions_run_without_anyone_waiting) {
  sycl::queue q{sycl::property::queue::in_order()};
  std::promise<void> ran;
  q.submit([&](sycl::handler& h) { h.host_task([&] { ran.set_value(); }); });
  ASSERT_EQ(ran.get_future().wait_for(std::chrono::seconds(60)), std::future_status::ready);
  q.wait();
}

TEST(graph, blocked_tasks_never_hold_up_independent_ones) {
  // More tasks than processors, each waiting for all the others.
  constexpr int tasks = 40;
  sycl::queue q;
  std::atomic<int> arrived{0};
  for (int i = 0; i < tasks; ++i)
    q.submit([&](sycl::handler& h) {
      h.host_task([&] {
        arrived.fetch_add(1);
        while (arrived.load() < tasks)
          std::this_thread::yield();
      });
    });
  q.wait();
  EXPECT_EQ(arrived.load(), tasks);
}

TEST(graph, as_many_tasks_as_there_are_may_wait_for_each_other) {
  constexpr int tasks = 600;
  sycl::queue q;
  std::atomic<int> missing{tasks};
  for (int i = 0; i < tasks; ++i)
    q.submit([&](sycl::handler& h) {
      h.host_task([&] {
        if (missing.fetch_sub(1) == 1)
          missing.notify_all();
        for (int seen = missing.load(); seen > 0; seen = missing.load())
          missing.wait(seen);
      });
    });
  q.wait();
  EXPECT_EQ(missing.load(), 0);
}

TEST(graph, joins_and_forks_follow_depends_on) {
  sycl::queue q;
  sycl::queue other{sycl::gpu_selector_v};
  for (int round = 0; round < 200; ++round) {
    std::atomic<int> done{0};
    int seen = -1;
    std::vector<sycl::event> first;
    for (int i = 0; i < 8; ++i)
      first.push_back(
          (i % 2 ? q : other).submit([&](sycl::handler& h) { h.host_task([&] { done.fetch_add(1); }); }));
    sycl::event join = other.submit([&](sycl::handler& h) {
      h.depends_on(first);
      h.host_task([&] { seen = done.load(); });
    });
    sycl::event tail = q.submit([&](sycl::handler& h) {
      h.depends_on(join);
      h.host_task([&] { seen *= 10; });
    });
    tail.wait();
    ASSERT_EQ(seen, 80);
  }
}

TEST(graph, waiting_inside_a_host_task_works) {
  sycl::queue q;
  int depth = 0;
  std::function<void()> nest = [&] {
    if (++depth < 20)
      q.submit([&](sycl::handler& h) { h.host_task(nest); }).wait();
  };
  q.submit([&](sycl::handler& h) { h.host_task(nest); }).wait();
  EXPECT_EQ(depth, 20);
}

TEST(graph, completion_lets_go_of_the_action) {
  sycl::queue q{sycl::property::queue::in_order()};
  const auto token = std::make_shared<int>(1);
  sycl::event e = q.submit([&](sycl::handler& h) { h.host_task([token] {}); });
  e.wait();
  EXPECT_EQ(token.use_count(), 1);
}

TEST(graph, a_long_history_takes_no_memory) {
  for (const bool in_order : {true, false}) {
    sycl::queue q{in_order ? sycl::property_list{sycl::property::queue::in_order()} : sycl::property_list{}};
    sycl::buffer<int> used{sycl::range<1>(1)};
    sycl::event last;
    const auto work = [&](int count, int wait_every) {
      for (int i = 0; i < count; ++i) {
        last = q.submit([&](sycl::handler& h) {
          h.depends_on(last);
          sycl::accessor a(used, h, sycl::read_only);
          h.host_task([] {});
        });
        if (i % wait_every == 0)
          last.wait();
      }
      q.wait();
    };
    work(1000, 64);
    const std::size_t before = mallinfo2().uordblks;
    work(50000, 64);
    const std::size_t after = mallinfo2().uordblks;
    EXPECT_LT(after, before + (1 << 20)); // 32 bytes a command would be more
  }
}

TEST(graph, a_chain_of_many_unfinished_commands_ends_and_leaves_nothing) {
  sycl::queue q;
  gate g;
  sycl::event last = g.submit(q);
  const std::size_t before = mallinfo2().uordblks;
  std::atomic<int> ran{0};
  for (int i = 0; i < 100000; ++i)
    last = q.submit([&](sycl::handler& h) {
      h.depends_on(last);
      h.host_task([&] { ran.fetch_add(1, std::memory_order_relaxed); });
    });
  g.open();
  last.wait();
  q.wait();
  EXPECT_EQ(ran.load(), 100000);
  EXPECT_LT(mallinfo2().uordblks, before + (64 << 10)) << "the last event holds the others";
}

} // namespace
