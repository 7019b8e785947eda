// Buffers: where their memory is, what accessors order, what is written back.
#include <sycl/sycl.hpp>

#include <gmock/gmock.h>

#include <future>
#include <numeric>

namespace {

using sycl::errc;
using testing::Each;
using testing::ElementsAre;

template <class F>
std::error_code code_of(const F& f) {
  try {
    f();
  } catch (const sycl::exception& e) {
    return e.code();
  }
  return make_error_code(errc::success);
}

class buffers : public testing::Test {
 protected:
  template <class Buffer>
  void increment(Buffer& b) {
    q_.submit([&](sycl::handler& h) {
      sycl::accessor a(b, h);
      h.parallel_for(b.get_range(), [=](auto i) { a[i] += 1; });
    });
  }
  sycl::queue q_{sycl::gpu_selector_v};
};

TEST_F(buffers, write_back_to_what_they_were_made_from) {
  std::vector<int> vector(100, 1);
  int array[6] = {1, 2, 3, 4, 5, 6};
  const auto pointer = std::make_shared<int>(8);
  const std::vector<int> constant(3, 5);
  std::vector<int> copied{1, 2, 3};
  {
    sycl::buffer a(vector);
    sycl::buffer<int, 2> b(array, {2, 3});
    sycl::buffer<int> c(pointer, sycl::range<1>(1));
    sycl::buffer<int> d(constant.data(), sycl::range<1>(3));
    sycl::buffer<int> e(copied.begin(), copied.end());
    increment(a);
    increment(b);
    increment(c);
    increment(d);
    increment(e);
    EXPECT_THAT(sycl::host_accessor(e, sycl::read_only), ElementsAre(2, 3, 4));
    EXPECT_THAT(sycl::host_accessor(d, sycl::read_only), Each(6));
  }
  EXPECT_THAT(vector, Each(2));
  EXPECT_THAT(array, ElementsAre(2, 3, 4, 5, 6, 7));
  EXPECT_EQ(*pointer, 9);
  EXPECT_EQ(pointer.use_count(), 1);
  EXPECT_THAT(constant, Each(5));
  EXPECT_THAT(copied, ElementsAre(1, 2, 3));
}

TEST_F(buffers, final_data_replaces_the_write_back) {
  std::vector<int> from(4, 1), to(4, -1), untouched(4, 1), silent(4, 1);
  auto weak_target = std::shared_ptr<int[]>(new int[4]{-1, -1, -1, -1});
  {
    sycl::buffer a(from), b(untouched), c(silent), d(untouched), e(untouched);
    a.set_final_data(to.begin());
    b.set_final_data(nullptr);
    c.set_write_back(false);
    d.set_final_data(std::weak_ptr<int[]>(weak_target));
    e.set_final_data(std::weak_ptr<int[]>());
    increment(a);
    increment(b);
    increment(c);
    increment(d);
    increment(e);
    EXPECT_EQ(sycl::host_accessor(b)[3], 2);
  }
  EXPECT_THAT(from, Each(1));
  EXPECT_THAT(to, Each(2));
  EXPECT_THAT(untouched, Each(1));
  EXPECT_THAT(silent, Each(1));
  EXPECT_THAT(std::vector(weak_target.get(), weak_target.get() + 4), Each(2));
}

TEST_F(buffers, memory_of_the_caller_is_used_directly) {
  std::vector<int> vector(10, 3);
  sycl::buffer<int> b(vector.data(), sycl::range<1>(10), {sycl::property::buffer::use_host_ptr()});
  EXPECT_TRUE(b.has_property<sycl::property::buffer::use_host_ptr>());
  EXPECT_EQ(&sycl::host_accessor(b)[0], vector.data());
}

TEST_F(buffers, accessors_order_readers_and_writers) {
  std::promise<void> open;
  auto opened = open.get_future().share();
  sycl::buffer<int> b{sycl::range<1>(1)};
  sycl::buffer<int> unrelated{sycl::range<1>(1)};
  using status = sycl::info::event_command_status;
  const auto status_of = [](const sycl::event& e) {
    return e.get_info<sycl::info::event::command_execution_status>();
  };
  const auto submit = [&](auto tag, auto body) {
    return q_.submit([&](sycl::handler& h) {
      sycl::accessor a(b, h, tag);
      h.host_task([=] { body(a); });
    });
  };
  std::atomic<int> reads{0};
  int read_before_write = -1;
  sycl::event write = submit(sycl::write_only_host_task, [=](auto a) {
    opened.wait();
    a[0] = 1;
  });
  sycl::event read1 = submit(sycl::read_only_host_task, [&](auto a) { reads += a[0]; });
  sycl::event read2 = submit(sycl::read_only_host_task, [&](auto a) { reads += a[0] * 10; });
  sycl::event write2 = submit(sycl::read_write_host_task, [&](auto a) {
    read_before_write = reads;
    a[0] = 2;
  });
  increment(unrelated);
  sycl::host_accessor(unrelated, sycl::read_only); // does not wait for b
  EXPECT_EQ(status_of(read1), status::submitted);
  EXPECT_EQ(status_of(read2), status::submitted);
  EXPECT_THAT(write2.get_wait_list(), testing::UnorderedElementsAre(write, read1, read2));
  open.set_value();
  EXPECT_EQ(sycl::host_accessor(b, sycl::read_only)[0], 2);
  EXPECT_EQ(read_before_write, 11);
}

TEST_F(buffers, a_host_accessor_holds_back_commands_that_conflict) {
  sycl::buffer<int> b{sycl::range<1>(1)};
  sycl::event reader, writer;
  {
    sycl::host_accessor held(b, sycl::read_only);
    sycl::host_accessor also(b, sycl::read_only);
    reader = q_.submit([&](sycl::handler& h) {
      sycl::accessor a(b, h, sycl::read_only);
      h.single_task([=] { (void)a[0]; });
    });
    reader.wait();
    increment(b);
    writer = q_.submit([&](sycl::handler& h) {
      sycl::accessor a(b, h, sycl::write_only);
      h.single_task([=] { a[0] = 4; });
    });
    EXPECT_EQ(writer.get_info<sycl::info::event::command_execution_status>(),
              sycl::info::event_command_status::submitted);
  }
  writer.wait();
  EXPECT_EQ(sycl::host_accessor(b)[0], 4);
}

TEST_F(buffers, accessors_see_boxes_of_the_buffer) {
  sycl::buffer<int, 3> b{{4, 5, 6}};
  {
    sycl::host_accessor all(b);
    std::iota(all.begin(), all.end(), 0);
    EXPECT_EQ(all[2][3][4], (2 * 5 + 3) * 6 + 4);
    EXPECT_EQ((all[{2, 3, 4}]), (2 * 5 + 3) * 6 + 4);
  }
  q_.submit([&](sycl::handler& h) {
    sycl::accessor part(b, h, sycl::range<3>(2, 2, 3), sycl::id<3>(1, 2, 3), sycl::write_only);
    EXPECT_EQ(part.size(), 12u);
    EXPECT_EQ(part.get_offset(), sycl::id<3>(1, 2, 3));
    h.parallel_for(part.get_range(), [=](sycl::id<3> i) { part[i] = -1; });
  });
  sycl::host_accessor all(b, sycl::read_only);
  for (int z = 0; z < 4; ++z)
    for (int y = 0; y < 5; ++y)
      for (int x = 0; x < 6; ++x) {
        const bool inside = z >= 1 && z < 3 && y >= 2 && y < 4 && x >= 3;
        ASSERT_EQ(all[z][y][x], inside ? -1 : (z * 5 + y) * 6 + x);
      }
  EXPECT_EQ(std::count(all.begin(), all.end(), -1), 12);
  EXPECT_EQ(code_of([&] { sycl::host_accessor(b, sycl::range<3>(4, 5, 6), sycl::id<3>(0, 0, 1)); }),
            errc::invalid);
}

TEST_F(buffers, sub_buffers_and_reinterpretation_share_memory) {
  std::vector<int> vector(12, 0);
  {
    sycl::buffer<int, 2> whole(vector.data(), {3, 4});
    sycl::buffer<int, 2> row(whole, {1, 0}, {1, 4});
    EXPECT_TRUE(row.is_sub_buffer());
    increment(row);
    increment(whole);
    increment(row);
    auto bytes = row.reinterpret<unsigned char, 1>(sycl::range<1>(16));
    EXPECT_EQ(sycl::host_accessor(bytes)[4], 3);
    EXPECT_EQ(code_of([&] { sycl::buffer<int, 2>(whole, {0, 1}, {2, 2}); }), errc::invalid);
    EXPECT_EQ(code_of([&] { sycl::buffer<int, 2>(whole, {2, 0}, {2, 4}); }), errc::invalid);
    EXPECT_EQ(code_of([&] { sycl::buffer<int, 2>(row, {0, 0}, {1, 1}); }), errc::invalid);
    EXPECT_EQ(code_of([&] { row.reinterpret<double, 1>(sycl::range<1>(3)); }), errc::invalid);
  }
  EXPECT_THAT(vector, ElementsAre(1, 1, 1, 1, 3, 3, 3, 3, 1, 1, 1, 1));
}

TEST_F(buffers, explicit_copies_follow_boxes) {
  sycl::buffer<int, 2> b{{4, 5}}, c{{6, 7}};
  std::vector<int> out(6, -1);
  q_.submit([&](sycl::handler& h) { h.fill(sycl::accessor(c, h, sycl::write_only), 9); });
  q_.submit([&](sycl::handler& h) {
    sycl::accessor a(b, h);
    h.parallel_for(b.get_range(), [=](sycl::item<2> i) { a[i] = static_cast<int>(i.get_linear_id()); });
  });
  q_.submit([&](sycl::handler& h) {
    h.copy(sycl::accessor(b, h, {2, 3}, {1, 2}, sycl::read_only),
           sycl::accessor(c, h, {3, 3}, {2, 1}, sycl::write_only));
  });
  q_.submit([&](sycl::handler& h) {
      h.copy(sycl::accessor(c, h, {2, 3}, {2, 1}, sycl::read_only), out.data());
    }).wait();
  EXPECT_THAT(out, ElementsAre(7, 8, 9, 12, 13, 14));
  const std::vector<int> in{1, 2, 3, 4};
  q_.copy(in.data(), sycl::accessor(c, {2, 2}, {0, 0}, sycl::write_only));
  sycl::host_accessor seen(c, sycl::read_only);
  EXPECT_EQ(seen[1][1], 4);
  EXPECT_EQ(std::accumulate(seen.begin(), seen.end(), 0), (42 - 6 - 4) * 9 + 63 + 10);
  EXPECT_EQ(code_of([&] {
              q_.submit([&](sycl::handler& h) {
                h.copy(sycl::accessor(c, h, sycl::read_only), sycl::accessor(b, h, sycl::write_only));
              });
            }),
            errc::invalid);
}

TEST_F(buffers, a_command_may_hold_the_last_handle) {
  std::vector<int> vector(5, 0);
  sycl::event done;
  {
    sycl::buffer b(vector);
    done = q_.submit([&](sycl::handler& h) {
      sycl::accessor a(b, h, sycl::write_only_host_task);
      h.host_task([a, keep = b] { a[2] = 7; });
    });
  }
  done.wait();
  EXPECT_THAT(vector, ElementsAre(0, 0, 7, 0, 0));
}

TEST_F(buffers, placeholders_are_required_later) {
  sycl::buffer<int> b{sycl::range<1>(2)};
  sycl::accessor later(b, sycl::write_only);
  EXPECT_TRUE(later.is_placeholder());
  q_.submit([&](sycl::handler& h) {
    h.require(later);
    h.single_task([=] { later[1] = 6; });
  });
  EXPECT_EQ(sycl::host_accessor(b)[1], 6);
}

} // namespace
