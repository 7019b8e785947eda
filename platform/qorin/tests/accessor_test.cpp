// What accessors convert to, compare as and refuse.
#include <sycl/sycl.hpp>

#include <gmock/gmock.h>

#include <numeric>
#include <unordered_map>

#include "code_of.hpp"

namespace {

using sycl::access_mode;
using sycl::errc;
using testing::ElementsAre;

int sum_of(const sycl::accessor<const int, 1, access_mode::read>& a) {
  return std::accumulate(a.begin(), a.end(), 0);
}
int sum_of(const sycl::host_accessor<const int, 1, access_mode::read>& a) {
  return std::accumulate(a.begin(), a.end(), 0);
}
int sum_of(const sycl::local_accessor<const int>& a) {
  return std::accumulate(a.cbegin(), a.cend(), 0);
}

class accessors : public testing::Test {
 protected:
  sycl::queue q_;
  sycl::buffer<int> b_{sycl::range<1>(4)};
};

TEST_F(accessors, that_read_are_made_of_those_that_read_and_more) {
  sycl::buffer<int> sums(sycl::range<1>(3));
  q_.submit([&](sycl::handler& h) {
    const sycl::accessor all(b_, h);
    const sycl::accessor middle(b_, h, sycl::range<1>(2), sycl::id<1>(1), sycl::read_only);
    const sycl::accessor to(sums, h, sycl::write_only);
    h.single_task([=] {
      std::iota(all.begin(), all.end(), 1);
      const sycl::accessor<const int, 1, access_mode::read> constant = middle;
      to[0] = sum_of(all);
      to[1] = sum_of(constant);
      to[2] = sycl::accessor<int, 1, access_mode::read>(constant)[1];
    });
  });
  EXPECT_THAT(sycl::host_accessor(sums), ElementsAre(10, 5, 3));
  EXPECT_EQ(sum_of(sycl::host_accessor(b_)), 10);
  EXPECT_FALSE((std::is_convertible_v<sycl::accessor<int, 1, access_mode::write>,
                                      sycl::accessor<const int, 1, access_mode::read>>));
}

TEST_F(accessors, of_the_host_hold_commands_back_when_converted_too) {
  sycl::event write;
  {
    const sycl::host_accessor<const int, 1, access_mode::read> reads = sycl::host_accessor(b_);
    write = q_.submit([&](sycl::handler& h) {
      const sycl::accessor a(b_, h, sycl::write_only);
      h.single_task([=] { a[0] = 1; });
    });
    EXPECT_EQ(write.get_wait_list().size(), 1u);
  }
  write.wait();
}

TEST_F(accessors, are_keys_by_what_they_access) {
  sycl::buffer<int> other(sycl::range<1>(1));
  const sycl::host_accessor first(b_), second(other);
  const std::unordered_map<sycl::host_accessor<int>, int> of_the_host{{first, 1}, {second, 2}};
  EXPECT_EQ(of_the_host.at(first) + 10 * of_the_host.at(second), 21);
  q_.submit([&](sycl::handler& h) {
      const sycl::local_accessor<int> one(1, h), two(1, h);
      const std::unordered_map<sycl::local_accessor<int>, int> local{{one, 1}, {two, 2}};
      EXPECT_EQ(local.at(one) + 10 * local.at(two), 21);
    }).wait();
}

TEST_F(accessors, of_local_memory_are_sequences_and_single_elements) {
  constexpr std::size_t items = 4;
  sycl::buffer<int> out(sycl::range<1>(3));
  q_.submit([&](sycl::handler& h) {
    sycl::local_accessor<int> swapped(1, h);
    sycl::local_accessor<int> row(items, h);
    const sycl::local_accessor<int, 0> last(h);
    const sycl::accessor to(out, h, sycl::write_only);
    swapped.swap(row);
    EXPECT_EQ(row.byte_size(), sizeof(int));
    EXPECT_EQ(last.size(), 1u);
    h.parallel_for(sycl::nd_range<1>(items, items), [=](sycl::nd_item<1> it) {
      const auto i = static_cast<int>(it.get_local_id(0));
      swapped[it.get_local_id()] = i + 1;
      row[0] = -1;
      if (i + 1 == items)
        last = i;
      sycl::group_barrier(it.get_group());
      if (it.get_group().leader()) {
        to[0] = sum_of(swapped);
        to[1] = std::accumulate(swapped.rbegin(), swapped.rend(), 0, [](int n, int x) { return 10 * n + x; });
        to[2] = last + 1;
      }
    });
  });
  EXPECT_THAT(sycl::host_accessor(out), ElementsAre(10, 4321, 4));
}

TEST_F(accessors, that_read_need_what_is_there) {
  const sycl::property_list none{sycl::no_init};
  EXPECT_EQ(code_of([&] { sycl::host_accessor(b_, sycl::read_only, none); }), errc::invalid);
  EXPECT_EQ(code_of([&] { sycl::accessor(b_, sycl::range<1>(1), sycl::read_only, none); }), errc::invalid);
  EXPECT_EQ(code_of([&] { sycl::host_accessor(b_, sycl::read_write, none); }), errc::success);
}

} // namespace
