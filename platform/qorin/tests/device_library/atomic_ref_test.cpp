#include <cstdint>
#include <limits>
#include <thread>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include <sycl/device_library.hpp>

namespace {

using sycl::memory_order;
using sycl::memory_scope;

template <typename T, memory_order Order = memory_order::relaxed>
using atomic = sycl::atomic_ref<T, Order, memory_scope::device, sycl::access::address_space::global_space>;

template <typename T>
class atomic_ref_of : public testing::Test {};
using numbers = testing::Types<std::int32_t, std::uint32_t, std::int64_t, std::uint64_t, float, double>;
TYPED_TEST_SUITE(atomic_ref_of, numbers);

TYPED_TEST(atomic_ref_of, reads_and_modifies) {
  using T = TypeParam;
  T object = T(5);
  const atomic<T, memory_order::seq_cst> reference(object);
  EXPECT_EQ(reference.load(), T(5));
  EXPECT_EQ(reference = T(6), T(6));
  EXPECT_EQ(static_cast<T>(reference), T(6));
  EXPECT_EQ(reference.exchange(T(7)), T(6));
  EXPECT_EQ(reference.fetch_add(T(3)), T(7));
  EXPECT_EQ(reference.fetch_sub(T(1)), T(10));
  EXPECT_EQ(reference += T(2), T(11));
  EXPECT_EQ(reference -= T(1), T(10));
  EXPECT_EQ(reference++, T(10));
  EXPECT_EQ(--reference, T(10));
  EXPECT_EQ(reference.fetch_min(T(4)), T(10));
  EXPECT_EQ(reference.fetch_min(T(9)), T(4));
  EXPECT_EQ(reference.fetch_max(T(8)), T(4));
  EXPECT_EQ(reference.fetch_max(T(2)), T(8));
  T expected = T(1);
  EXPECT_FALSE(reference.compare_exchange_strong(expected, T(2)));
  EXPECT_EQ(expected, T(8));
  EXPECT_TRUE(
      reference.compare_exchange_strong(expected, T(2), memory_order::acq_rel, memory_order::acquire));
  while (!reference.compare_exchange_weak(expected, T(3))) {
  }
  EXPECT_EQ(object, T(3));
  if constexpr (std::is_integral_v<T>) {
    object = T(12);
    EXPECT_EQ(reference.fetch_and(T(10)), T(12));
    EXPECT_EQ(reference |= T(1), T(9));
    EXPECT_EQ(reference.fetch_xor(T(3)), T(9));
    EXPECT_EQ(object, T(10));
  }
}

TYPED_TEST(atomic_ref_of, loses_no_update_between_threads) {
  using T = TypeParam;
  constexpr int threads = 4;
  constexpr int rounds = 100000;
  T sum = T(0);
  T largest = T(0);
  int arrived = 0;
  std::vector<std::thread> pool;
  for (int t = 0; t < threads; ++t)
    pool.emplace_back([&, t] {
      const atomic<int, memory_order::acq_rel> gate(arrived);
      ++gate;
      while (gate.load() < threads)
        std::this_thread::yield();
      for (int i = 0; i < rounds; ++i) {
        atomic<T>(sum).fetch_add(T(1));
        atomic<T>(largest).fetch_max(static_cast<T>(i * threads + t));
      }
    });
  for (std::thread& thread : pool)
    thread.join();
  EXPECT_EQ(sum, static_cast<T>(threads * rounds));
  EXPECT_EQ(largest, static_cast<T>(threads * rounds - 1));
}

TEST(atomic_ref, orders_what_was_written_before) {
  int payload = 0;
  int flag = 0;
  std::thread writer([&] {
    payload = 42;
    atomic<int>(flag).store(1, memory_order::release);
  });
  while (atomic<int>(flag).load(memory_order::acquire) == 0) {
  }
  EXPECT_EQ(payload, 42);
  writer.join();
  sycl::atomic_fence(memory_order::acq_rel, memory_scope::device);
}

TEST(atomic_ref, wraps_integers_and_moves_pointers) {
  int object = std::numeric_limits<int>::max();
  EXPECT_EQ(++atomic<int>(object), std::numeric_limits<int>::min());
  int array[4] = {0, 1, 2, 3};
  int* pointer = array;
  const atomic<int*, memory_order::acq_rel> reference(pointer);
  EXPECT_EQ(reference.fetch_add(2), array);
  EXPECT_EQ(*reference.load(), 2);
  EXPECT_EQ(reference -= 1, array + 1);
  EXPECT_EQ(++reference, array + 2);
  static_assert(decltype(reference)::default_read_order == memory_order::acquire);
  static_assert(decltype(reference)::default_write_order == memory_order::release);
}

} // namespace
