// Work-groups: identities, barriers, local memory, group functions.
#include <sycl/sycl.hpp>

#include <gtest/gtest.h>

#include <numeric>

namespace {

class nd_range : public testing::Test {
 protected:
  template <class T>
  std::vector<T>& shared(std::size_t count, T poison) {
    static std::vector<T> memory;
    memory.assign(count, poison);
    return memory;
  }
  sycl::queue q_{sycl::property_list{sycl::property::queue::in_order()}};
};

TEST_F(nd_range, items_know_where_they_are_in_three_dimensions) {
  const sycl::range<3> global(4, 6, 10), local(2, 3, 5);
  auto& seen = shared<int>(global.size(), -1);
  int* out = seen.data();
  q_.parallel_for(sycl::nd_range(global, local), [=](sycl::nd_item<3> it) {
      const auto g = it.get_global_id();
      bool right = it.get_global_linear_id() == (g[0] * 6 + g[1]) * 10 + g[2];
      for (int d = 0; d < 3; ++d)
        right = right && g[d] == it.get_group(d) * it.get_local_range(d) + it.get_local_id(d);
      right = right && it.get_group_range() == sycl::range<3>(2, 2, 2);
      right = right && it.get_local_linear_id() ==
                           (it.get_local_id(0) * 3 + it.get_local_id(1)) * 5 + it.get_local_id(2);
      out[it.get_global_linear_id()] = right ? static_cast<int>(it.get_group_linear_id()) : -2;
    }).wait();
  for (std::size_t z = 0; z < 4; ++z)
    for (std::size_t y = 0; y < 6; ++y)
      for (std::size_t x = 0; x < 10; ++x)
        ASSERT_EQ(seen[(z * 6 + y) * 10 + x], static_cast<int>((z / 2 * 2 + y / 3) * 2 + x / 5));
}

TEST_F(nd_range, barriers_make_writes_to_local_memory_seen) {
  constexpr std::size_t groups = 300, items = 64;
  auto& result = shared<int>(groups * items, -1);
  int* out = result.data();
  q_.submit([&](sycl::handler& h) {
      sycl::local_accessor<int> row(items, h);
      sycl::local_accessor<char> unused(3, h);
      sycl::local_accessor<int> copy(items, h);
      h.parallel_for(sycl::nd_range<1>(groups * items, items), [=](sycl::nd_item<1> it) {
        const std::size_t me = it.get_local_id(0);
        row[me] = static_cast<int>(it.get_global_id(0));
        sycl::group_barrier(it.get_group());
        copy[me] = row[items - 1 - me];
        it.barrier();
        out[it.get_global_id(0)] = copy[(me + 1) % items];
      });
    }).wait();
  for (std::size_t g = 0; g < groups; ++g)
    for (std::size_t i = 0; i < items; ++i)
      ASSERT_EQ(result[g * items + i], static_cast<int>(g * items + items - 1 - (i + 1) % items));
}

TEST_F(nd_range, groups_may_differ_in_whether_they_wait) {
  constexpr std::size_t groups = 200, items = 20;
  auto& result = shared<int>(groups * items, -1);
  int* out = result.data();
  for (const bool first_waits : {false, true}) {
    std::fill(result.begin(), result.end(), -1);
    q_.parallel_for(sycl::nd_range<1>(groups * items, items), [=](sycl::nd_item<1> it) {
        const bool waits = (it.get_group(0) % 3 == 0) == first_waits;
        int value = 1;
        if (waits)
          value = sycl::reduce_over_group(it.get_group(), 1, sycl::plus<>());
        out[it.get_global_id(0)] = value;
      }).wait();
    for (std::size_t i = 0; i < result.size(); ++i)
      ASSERT_EQ(result[i], ((i / items) % 3 == 0) == first_waits ? static_cast<int>(items) : 1);
  }
}

TEST_F(nd_range, group_functions_follow_the_order_of_the_items) {
  constexpr std::size_t items = 37;
  auto& result = shared<int>(items * 10, -1);
  int* out = result.data();
  q_.parallel_for(sycl::nd_range<1>(items, items), [=](sycl::nd_item<1> it) {
      const auto g = it.get_group();
      const int me = static_cast<int>(it.get_local_id(0));
      int* o = out + it.get_local_id(0);
      const auto last = [](int, int b) { return b; }; // not commutative: shows the order
      o[0 * items] = sycl::inclusive_scan_over_group(g, me + 1, sycl::plus<>());
      o[1 * items] = sycl::exclusive_scan_over_group(g, me + 1, sycl::plus<>());
      o[2 * items] = sycl::exclusive_scan_over_group(g, me, 100, last);
      o[3 * items] = sycl::reduce_over_group(g, me, last);
      o[4 * items] = sycl::group_broadcast(g, me * me, 5);
      o[5 * items] = sycl::any_of_group(g, me == 3) * 100 + sycl::all_of_group(g, me < 36) * 10 +
                     sycl::none_of_group(g, me > 50);
      o[6 * items] = sycl::reduce_over_group(g, me, sycl::maximum<>());
      o[7 * items] = sycl::reduce_over_group(g, me, 7, sycl::plus<>());
      o[8 * items] = sycl::joint_reduce(g, out, out + items, 0, sycl::plus<>());
      o[9 * items] = sycl::reduce_over_group(g, me + 1, sycl::minimum<int>());
    }).wait();
  int sum = 0, sums = 0;
  for (std::size_t i = 0; i < items; ++i) {
    const int me = static_cast<int>(i);
    EXPECT_EQ(result[1 * items + i], sum);
    sum += me + 1;
    sums += sum;
    EXPECT_EQ(result[0 * items + i], sum);
    EXPECT_EQ(result[2 * items + i], i == 0 ? 100 : me - 1);
    EXPECT_EQ(result[3 * items + i], 36);
    EXPECT_EQ(result[4 * items + i], 25);
    EXPECT_EQ(result[5 * items + i], 101);
    EXPECT_EQ(result[6 * items + i], 36);
    EXPECT_EQ(result[7 * items + i], 36 * 37 / 2 + 7);
    EXPECT_EQ(result[9 * items + i], 1);
  }
  for (std::size_t i = 0; i < items; ++i)
    EXPECT_EQ(result[8 * items + i], sums);
}

TEST_F(nd_range, sub_groups_exchange_values) {
  constexpr std::size_t items = 40; // two whole sub-groups and one of 8
  auto& result = shared<int>(items * 6, -1);
  int* out = result.data();
  q_.parallel_for(sycl::nd_range<1>(3 * items, items), [=](sycl::nd_item<1> it) {
      const auto sg = it.get_sub_group();
      const int me = static_cast<int>(it.get_local_id(0));
      int values[6] = {
          sycl::shift_group_left(sg, me, 1),
          sycl::shift_group_right(sg, me, 2),
          sycl::permute_group_by_xor(sg, me, 3),
          sycl::select_from_group(sg, me, sg.get_local_linear_range() - 1 - sg.get_local_linear_id()),
          sycl::reduce_over_group(sg, 1, sycl::plus<>()),
          -7};
      if (sg.get_group_linear_id() == 1) // only some sub-groups meet
        values[5] = sycl::inclusive_scan_over_group(sg, 1, sycl::plus<>());
      if (it.get_group(0) == 2)
        for (std::size_t k = 0; k < 6; ++k)
          out[k * items + it.get_local_id(0)] = values[k];
    }).wait();
  for (std::size_t i = 0; i < items; ++i) {
    const std::size_t lane = i % 16, first = i - lane, size = std::min<std::size_t>(16, items - first);
    const int me = static_cast<int>(i);
    EXPECT_EQ(result[0 * items + i], lane + 1 < size ? me + 1 : me);
    EXPECT_EQ(result[1 * items + i], lane >= 2 ? me - 2 : me);
    EXPECT_EQ(result[2 * items + i], static_cast<int>(first + (lane ^ 3)));
    EXPECT_EQ(result[3 * items + i], static_cast<int>(first + size - 1 - lane));
    EXPECT_EQ(result[4 * items + i], static_cast<int>(size));
    EXPECT_EQ(result[5 * items + i], first == 16 ? static_cast<int>(lane) + 1 : -7);
  }
}

TEST_F(nd_range, wrong_shapes_and_divergent_barriers_are_errors) {
  const auto code_of = [&](sycl::nd_range<1> shape) {
    try {
      q_.parallel_for(shape, [](sycl::nd_item<1>) {});
    } catch (const sycl::exception& e) {
      return e.code();
    }
    return make_error_code(sycl::errc::success);
  };
  EXPECT_EQ(code_of({10, 3}), sycl::errc::nd_range);
  EXPECT_EQ(code_of({10, 0}), sycl::errc::nd_range);
  EXPECT_EQ(code_of({100000, 100000}), sycl::errc::nd_range);
  EXPECT_EQ(code_of({0, 4}), sycl::errc::success);
  EXPECT_THROW(q_.submit([&](sycl::handler& h) { sycl::local_accessor<char> much(1 << 30, h); }),
               sycl::exception);

  int errors = 0;
  sycl::queue q([&](sycl::exception_list list) { errors += static_cast<int>(list.size()); });
  for (const int absent : {0, 5})
    q.parallel_for(sycl::nd_range<1>(8, 8), [=](sycl::nd_item<1> it) {
       if (static_cast<int>(it.get_local_id(0)) != absent)
         it.barrier();
     }).wait();
  q.wait_and_throw();
  EXPECT_EQ(errors, 2);
}

TEST_F(nd_range, kernels_without_groups_refuse_local_memory) {
  sycl::errc code = sycl::errc::success;
  const auto refuses = [&](const auto& launch) {
    try {
      q_.submit([&](sycl::handler& h) {
        sycl::local_accessor<int> local(2, h);
        launch(h);
      });
    } catch (const sycl::exception& e) {
      code = static_cast<sycl::errc>(e.code().value());
    }
    return std::exchange(code, sycl::errc::success) == sycl::errc::kernel_argument;
  };
  EXPECT_TRUE(refuses([](sycl::handler& h) { h.single_task([] {}); }));
  EXPECT_TRUE(refuses([](sycl::handler& h) { h.parallel_for(sycl::range<1>(2), [](sycl::id<1>) {}); }));
  EXPECT_FALSE(
      refuses([](sycl::handler& h) { h.parallel_for(sycl::nd_range<1>(2, 2), [](sycl::nd_item<1>) {}); }));
}

TEST_F(nd_range, async_copies_go_both_ways_and_are_seen_by_all_items_after_wait_for) {
  constexpr std::size_t groups = 50, items = 40, stride = 3;
  auto& source = shared<float>(groups * items * stride, 0.0f);
  std::iota(source.begin(), source.end(), 0.0f);
  std::vector<float> target(source.size(), -1.0f);
  const float* const in = source.data();
  float* const out = target.data();
  q_.submit([&](sycl::handler& h) {
    sycl::local_accessor<float> part(items, h), turned(items, h);
    h.parallel_for(sycl::nd_range<1>(groups * items, items), [=](sycl::nd_item<1> it) {
      using sycl::access::decorated;
      const auto space = sycl::access::address_space::global_space;
      const std::size_t base = it.get_group(0) * items * stride, me = it.get_local_id(0);
      sycl::group_barrier(it.get_group()); // after which the last item goes on first
      const sycl::device_event came =
          it.async_work_group_copy(part.get_multi_ptr<decorated::yes>(),
                                   sycl::address_space_cast<space, decorated::yes>(in + base), items, stride);
      it.wait_for(came);
      turned[me] = part[items - 1 - me];
      sycl::group_barrier(it.get_group());
      it.get_group()
          .async_work_group_copy(sycl::address_space_cast<space, decorated::yes>(out + base),
                                 turned.get_multi_ptr<decorated::yes>(), items)
          .wait();
    });
  });
  q_.wait();
  for (std::size_t g = 0; g < groups; ++g)
    for (std::size_t i = 0; i < items * stride; ++i)
      ASSERT_EQ(target[g * items * stride + i],
                i < items ? static_cast<float>((g * items + items - 1 - i) * stride) : -1.0f);
}

TEST_F(nd_range, hierarchical_kernels_run_once_a_group_and_its_items_inside) {
  const sycl::range<2> groups(3, 2), items(2, 4);
  auto& seen = shared<int>(groups.size() * items.size(), -1);
  int* out = seen.data();
  std::vector<int> runs(groups.size(), 0);
  int* count = runs.data();
  q_.submit([&](sycl::handler& h) {
    sycl::local_accessor<int> sums(4, h);
    h.parallel_for_work_group(groups, items, [=](sycl::group<2> g) {
      ++count[g.get_group_linear_id()];
      g.parallel_for_work_item(sycl::range<2>(1, 4), [&](sycl::h_item<2> i) { sums[i.get_local_id(1)] = 0; });
      g.parallel_for_work_item([&](sycl::h_item<2> i) { sums[i.get_local_id(1)] += 1; });
      g.parallel_for_work_item([&](sycl::h_item<2> i) {
        const bool right = i.get_global_id() == g.get_group_id() * g.get_local_range() + i.get_local_id() &&
                           i.get_global_range() == groups * items && i.get_physical_local_range() == items;
        out[i.get_global().get_linear_id()] = right ? sums[i.get_local_id(1)] : -2;
      });
    });
  });
  q_.wait();
  EXPECT_EQ(runs, std::vector<int>(groups.size(), 1));
  EXPECT_EQ(seen, std::vector<int>(groups.size() * items.size(), 2));
}

TEST_F(nd_range, reductions_combine_ranges_and_groups) {
  double* sum = sycl::malloc_shared<double>(1, q_);
  int* most = sycl::malloc_shared<int>(1, q_);
  constexpr int count = 100001;
  std::vector<double> first_result;
  for (int repeat = 0; repeat < 3; ++repeat) {
    *sum = 1e6;
    *most = -1;
    q_.parallel_for(sycl::range<1>(count), sycl::reduction(sum, sycl::plus<>()),
                    sycl::reduction(most, sycl::maximum<int>()),
                    [=](sycl::id<1> i, auto& s, auto& m) {
                      s += 1.0 / (1.0 + static_cast<double>(i));
                      m.combine(static_cast<int>((i * 7919) % count));
                    })
        .wait();
    EXPECT_NEAR(*sum, 1e6 + 12.0901561, 1e-6);
    EXPECT_EQ(*most, count - 1);
    first_result.push_back(*sum);
    EXPECT_EQ(first_result.front(), *sum) << "the order of a sum is fixed";
  }
  sycl::buffer<int> total{sycl::range<1>(1)};
  {
    sycl::host_accessor set(total);
    set[0] = 12345;
  }
  q_.submit([&](sycl::handler& h) {
    auto r = sycl::reduction(total, h, sycl::plus<>(), sycl::property::reduction::initialize_to_identity());
    h.parallel_for(sycl::nd_range<2>({6, 8}, {3, 4}), r, [=](sycl::nd_item<2> it, auto& t) {
      it.barrier();
      t += static_cast<int>(it.get_global_linear_id());
    });
  });
  EXPECT_EQ(sycl::host_accessor(total)[0], 47 * 48 / 2);
  sycl::free(sum, q_);
  sycl::free(most, q_);
}

TEST_F(nd_range, reductions_take_bool_and_spans) {
  constexpr std::size_t count = 5000;
  auto& held = shared<int>(4, 0);
  held = {100, 7, 1, 0};
  int* const sums = held.data();
  bool all[2] = {true, true}, any = false;
  bool* const both = all;
  const auto bins = [&] { return sycl::reduction(sycl::span<int, 3>(sums, 3), sycl::plus<>()); };
  q_.parallel_for(sycl::range<1>(count), bins(), sycl::reduction(both, sycl::logical_and<bool>()),
                  sycl::reduction(&any, sycl::logical_or<>()),
                  [=](sycl::id<1> i, auto& bin, auto& every, auto& some) {
                    bin[i % 3] += static_cast<int>(i[0]);
                    every.combine(i < count);
                    some.combine(i == count - 1);
                  });
  q_.parallel_for(sycl::nd_range<1>(60, 20), bins(), sycl::reduction(both + 1, sycl::logical_and<bool>()),
                  [=](sycl::nd_item<1> i, auto& bin, auto& every) {
                    ++bin[i.get_local_id(0) % 3];
                    every.combine(i.get_global_id(0) != 33);
                  });
  q_.wait();
  std::vector<int> expected = {100 + 21, 7 + 21, 1 + 18, 0};
  for (std::size_t i = 0; i < count; ++i)
    expected[i % 3] += static_cast<int>(i);
  EXPECT_EQ(held, expected);
  EXPECT_TRUE(all[0] && any);
  EXPECT_FALSE(all[1]);
  q_.parallel_for(sycl::range<1>(10),
                  sycl::reduction(sycl::span<int, 4>(held), 1, sycl::multiplies<>(),
                                  sycl::property::reduction::initialize_to_identity()),
                  [=](sycl::id<1>, auto& bin) { bin[3] *= 2; })
      .wait();
  EXPECT_EQ(held, (std::vector<int>{1, 1, 1, 1024}));
}

} // namespace
