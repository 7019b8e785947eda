// Buffers: where their memory is, what accessors order, what is written back.
#include <sycl/sycl.hpp>

#include <gmock/gmock.h>

#include <future>
#include <numeric>

#include "code_of.hpp"

namespace {

using sycl::errc;
using testing::Each;
using testing::ElementsAre;

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
  auto shared_target = std::shared_ptr<int[]>(new int[4]{-1, -1, -1, -1});
  {
    sycl::buffer a(from), b(untouched), c(silent), d(untouched), e(untouched), f(untouched), g(untouched);
    a.set_final_data(to.begin());
    b.set_final_data(nullptr);
    c.set_write_back(false);
    d.set_final_data(std::weak_ptr<int[]>(weak_target));
    e.set_final_data(std::weak_ptr<int[]>());
    f.set_final_data(shared_target);
    g.set_final_data(static_cast<int*>(nullptr));
    EXPECT_EQ(shared_target.use_count(), 1);
    for (auto* each : {&a, &b, &c, &d, &e, &f, &g})
      increment(*each);
    EXPECT_EQ(sycl::host_accessor(b)[3], 2);
  }
  EXPECT_THAT(from, Each(1));
  EXPECT_THAT(to, Each(2));
  EXPECT_THAT(untouched, Each(1));
  EXPECT_THAT(silent, Each(1));
  for (const auto& target : {weak_target, shared_target})
    EXPECT_THAT(std::vector(target.get(), target.get() + 4), Each(2));
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

TEST_F(buffers, copies_between_accessors_of_other_shapes_go_in_linear_order) {
  std::vector<int> in(30), line(14, -1), cube(40, -1);
  std::iota(in.begin(), in.end(), 0);
  {
    sycl::buffer<int, 2> from(in.data(), {5, 6});
    sycl::buffer<int> to_line(line);
    sycl::buffer<int, 3> to_cube(cube.data(), {2, 4, 5});
    q_.submit([&](sycl::handler& h) {
      h.copy(sycl::accessor(from, h, {3, 4}, {1, 2}, sycl::read_only),
             sycl::accessor(to_line, h, sycl::range<1>(13), sycl::id<1>(1), sycl::write_only));
    });
    q_.copy(sycl::accessor(from, {3, 4}, {1, 2}, sycl::read_only),
            sycl::accessor(to_cube, {2, 3, 2}, {0, 1, 3}, sycl::write_only));
    EXPECT_EQ(code_of([&] {
                q_.copy(sycl::accessor(from, sycl::read_only), sycl::accessor(to_line, sycl::write_only));
              }),
              errc::invalid);
  }
  EXPECT_THAT(line, ElementsAre(-1, 8, 9, 10, 11, 14, 15, 16, 17, 20, 21, 22, 23, -1));
  std::vector<int> copied;
  std::copy_if(cube.begin(), cube.end(), std::back_inserter(copied), [](int x) { return x != -1; });
  EXPECT_EQ(copied, std::vector<int>(line.begin() + 1, line.end() - 1));
  EXPECT_EQ(cube[8], 8);
  EXPECT_EQ(cube[13], 10);
  EXPECT_EQ(cube[39], 23);
}

TEST_F(buffers, accessors_of_no_dimension_stand_for_the_first_element) {
  std::vector<int> data{3, 4};
  sycl::buffer b(data);
  q_.submit([&](sycl::handler& h) {
    sycl::accessor<int, 0> a(b, h, sycl::property::no_init());
    EXPECT_EQ(a.size(), 1u);
    EXPECT_TRUE(a.has_property<sycl::property::no_init>());
    h.single_task([=] {
      a = 10;
      int& first = a;
      first += a + 1;
    });
  });
  sycl::host_accessor<const int, 0, sycl::access_mode::read> seen(b);
  EXPECT_EQ(seen, 21);
  EXPECT_TRUE((sycl::accessor<int, 0>().empty()));
  sycl::buffer<int> nothing{sycl::range<1>(0)};
  EXPECT_EQ((sycl::host_accessor<int, 0>(nothing).size()), 0u);
  EXPECT_EQ(data[1], 4);
}

TEST_F(buffers, iterators_reach_every_place_of_a_box_from_both_ends) {
  sycl::buffer<int, 2> b{{4, 5}};
  q_.submit([&](sycl::handler& h) {
    sycl::accessor a(b, h);
    h.parallel_for(b.get_range(), [=](sycl::item<2> i) { a[i] = static_cast<int>(i.get_linear_id()); });
  });
  const sycl::host_accessor box(b, sycl::range<2>(2, 3), sycl::id<2>(1, 2));
  EXPECT_THAT(std::vector<int>(box.rbegin(), box.rend()), ElementsAre(14, 13, 12, 9, 8, 7));
  const auto first = box.begin();
  EXPECT_EQ(first[4], 13);
  EXPECT_EQ(*(2 + first), 9);
  EXPECT_EQ(box.end() - first, 6);
  EXPECT_TRUE(first < first + 1 && box.cend() >= box.cbegin());
  std::sort(box.begin(), box.end(), std::greater<>());
  EXPECT_THAT(std::vector<int>(box.cbegin(), box.cend()), ElementsAre(14, 13, 12, 9, 8, 7));
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

/// Looks when it is written to.
template <class Look>
struct looking_iterator {
  Look look;
  looking_iterator& operator*() { return *this; }
  looking_iterator& operator++(int) { return *this; }
  void operator=(int) { look(); }
};

TEST_F(buffers, that_share_a_mutex_are_used_under_it) {
  std::mutex mutex;
  int a_data = 0, b_data = 0;
  bool free_inside = true;
  {
    const sycl::property_list held{sycl::property::buffer::use_mutex(mutex)};
    sycl::buffer<int> a(&a_data, 1, held), b(&b_data, 1, held), plain(1);
    EXPECT_EQ(a.get_property<sycl::property::buffer::use_mutex>().get_mutex_ptr(), &mutex);
    EXPECT_EQ(code_of([&] { a.get_property<sycl::property::buffer::context_bound>(); }), errc::invalid);
    const auto look = [&] {
      std::thread([&] {
        free_inside = mutex.try_lock();
        if (free_inside)
          mutex.unlock();
      }).join();
    };
    q_.submit([&](sycl::handler& h) {
      sycl::accessor x(a, h), y(b, h);
      h.host_task([&, x, y] {
        look();
        x[0] = y[0] = 5;
      });
    });
    q_.wait();
    EXPECT_FALSE(free_inside);
    q_.submit([&](sycl::handler& h) {
      sycl::accessor x(plain, h);
      h.host_task(look);
    });
    q_.wait();
    EXPECT_TRUE(free_inside);
    b.set_final_data(looking_iterator<decltype(look)>{look});
  }
  EXPECT_FALSE(free_inside) << "the write-back";
  EXPECT_EQ(a_data, 5);
}

TEST_F(buffers, bound_to_a_context_are_refused_by_queues_of_others) {
  const sycl::context ctx(q_.get_device());
  sycl::queue own(ctx, q_.get_device());
  std::vector<int> data(2, 1);
  {
    sycl::buffer b(data, {sycl::property::buffer::context_bound(ctx)});
    EXPECT_EQ(b.get_property<sycl::property::buffer::context_bound>().get_context(), ctx);
    EXPECT_EQ(code_of([&] { increment(b); }), errc::invalid);
    sycl::accessor<int, 1, sycl::access_mode::read_write, sycl::target::device,
                   sycl::access::placeholder::true_t>
        later(b);
    EXPECT_EQ(code_of([&] { q_.fill(later, 4); }), errc::invalid);
    own.fill(later, 4);
  }
  EXPECT_THAT(data, Each(4));
}

TEST_F(buffers, are_made_from_what_converts_and_from_nothing_else) {
  std::vector<int> vector(3, 1);
  const std::array<int, 2> constant{1, 2};
  auto many = std::make_unique<int[]>(2);
  many[1] = 7;
  sycl::buffer with_allocator(vector, std::allocator<int>());
  sycl::buffer from_constant(constant);
  static_assert(std::is_same_v<decltype(with_allocator), sycl::buffer<int, 1, std::allocator<int>>>);
  static_assert(std::is_same_v<decltype(from_constant), sycl::buffer<int, 1>>);
  static_assert(!std::is_constructible_v<sycl::buffer<int>, std::unique_ptr<int[]>&>);
  static_assert(!std::is_constructible_v<sycl::buffer<int>, std::vector<std::string>&>);
  sycl::buffer<int> kept(std::move(many), sycl::range<1>(2));
  increment(kept);
  EXPECT_EQ(kept.get_host_access()[1], 8);
  static_assert(std::is_same_v<decltype(kept.reinterpret<float>()), sycl::buffer<float, 1>>);
  EXPECT_EQ((kept.reinterpret<char, 1>().get_range()), sycl::range<1>(8));
}

} // namespace
