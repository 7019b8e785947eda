// Exceptions, asynchronous errors and their handlers.
#include <sycl/sycl.hpp>

#include <gmock/gmock.h>

namespace {

using sycl::errc;

std::string text_of(const std::exception_ptr& error) {
  try {
    std::rethrow_exception(error);
  } catch (const std::exception& e) {
    return e.what();
  }
}

sycl::event submit_throwing(sycl::queue& q, const char* text) {
  return q.submit([=](sycl::handler& h) { h.host_task([=] { throw std::runtime_error(text); }); });
}

class async_errors : public testing::Test {
 protected:
  sycl::async_handler collect_ = [this](sycl::exception_list errors) {
    for (const std::exception_ptr& e : errors)
      texts_.push_back(text_of(e));
  };
  std::vector<std::string> texts_;
};

TEST_F(async_errors, reach_the_handler_when_asked_for_and_dependents_still_run) {
  sycl::queue q(collect_);
  sycl::event failed = submit_throwing(q, "first");
  bool ran = false;
  sycl::event dependent = q.submit([&](sycl::handler& h) {
    h.depends_on(failed);
    h.host_task([&] { ran = true; });
  });
  dependent.wait();
  EXPECT_TRUE(ran);
  EXPECT_TRUE(texts_.empty()) << "wait alone reports nothing";
  q.wait_and_throw();
  EXPECT_THAT(texts_, testing::ElementsAre("first"));
  submit_throwing(q, "second").wait_and_throw();
  submit_throwing(q, "third").wait();
  q.throw_asynchronous();
  q.wait_and_throw();
  EXPECT_THAT(texts_, testing::ElementsAre("first", "second", "third")) << "each error is reported once";
}

TEST_F(async_errors, of_all_the_commands_an_event_depended_on_reach_their_queues_handlers) {
  std::vector<std::string> elsewhere;
  sycl::queue q(collect_), unheard(collect_);
  sycl::queue between([&](sycl::exception_list errors) { elsewhere.push_back(text_of(*errors.begin())); });
  sycl::event unrelated = submit_throwing(unheard, "unrelated");
  sycl::event first = submit_throwing(q, "first");
  first.wait(); // complete, and forgotten by the graph, before the others come
  sycl::event second = between.submit([&](sycl::handler& h) {
    h.depends_on(first);
    h.host_task([] { throw std::runtime_error("second"); });
  });
  sycl::buffer<int> link(1);
  sycl::queue last;
  last.submit([&](sycl::handler& h) {
    h.depends_on(second);
    sycl::accessor a(link, h, sycl::write_only);
    h.single_task([=] { a[0] = 1; });
  });
  sycl::event end = sycl::queue().submit([&](sycl::handler& h) {
    sycl::accessor a(link, h);
    h.single_task([=] { a[0] += 1; });
  });
  unrelated.wait();
  end.wait_and_throw();
  EXPECT_THAT(texts_, testing::ElementsAre("first"));
  EXPECT_THAT(elsewhere, testing::ElementsAre("second"));
}

TEST_F(async_errors, of_kernels_come_from_any_thread_and_of_the_context_serve_its_queues) {
  sycl::queue q(sycl::context(sycl::device(sycl::gpu_selector_v), collect_), sycl::gpu_selector_v);
  q.parallel_for(1'000'000, [](sycl::id<1> i) {
    if (i == 999'999)
      throw std::runtime_error("item");
  });
  q.wait_and_throw();
  EXPECT_THAT(texts_, testing::ElementsAre("item"));
}

TEST_F(async_errors, that_nobody_asked_for_are_reported_at_the_end_of_the_queue) {
  {
    sycl::queue q(collect_);
    submit_throwing(q, "late").wait();
  }
  EXPECT_THAT(texts_, testing::ElementsAre("late"));
}

TEST_F(async_errors, a_throwing_handler_throws_out_of_wait_and_throw) {
  sycl::queue q([](sycl::exception_list errors) { std::rethrow_exception(*errors.begin()); });
  submit_throwing(q, "through");
  EXPECT_THROW(q.wait_and_throw(), std::runtime_error);
}

TEST(errors_death_test, the_default_handler_prints_and_ends_the_program) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_DEATH(
      {
        sycl::queue q;
        submit_throwing(q, "nobody listens");
        q.wait_and_throw();
      },
      "nobody listens");
}

TEST(errors, exceptions_carry_code_text_and_context) {
  const sycl::context ctx;
  const sycl::exception plain(make_error_code(errc::nd_range), "text");
  const sycl::exception with(ctx, make_error_code(errc::build));
  EXPECT_EQ(plain.code(), errc::nd_range);
  EXPECT_EQ(plain.category(), sycl::sycl_category());
  EXPECT_STREQ(plain.category().name(), "sycl");
  EXPECT_STREQ(plain.what(), "text");
  EXPECT_FALSE(plain.has_context());
  EXPECT_THROW(plain.get_context(), sycl::exception);
  EXPECT_EQ(with.get_context(), ctx);
  EXPECT_STREQ(with.what(), make_error_code(errc::build).message().c_str());
  const sycl::exception foreign(5, std::generic_category(), "io");
  EXPECT_EQ(foreign.code(), std::error_code(5, std::generic_category()));
  const std::error_code from_enum = errc::invalid;
  EXPECT_EQ(from_enum, make_error_code(errc::invalid));
}

} // namespace
