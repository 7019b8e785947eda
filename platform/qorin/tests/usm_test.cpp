// Unified shared memory.
#include <sycl/sycl.hpp>

#include <gmock/gmock.h>

#include <cstdlib>

namespace {

using sycl::errc;
using sycl::usm::alloc;

TEST(usm, allocations_know_their_kind_and_device) {
  const sycl::queue q{sycl::gpu_selector_v}, other;
  const sycl::context ctx = q.get_context();
  int* device = sycl::malloc_device<int>(100, q);
  int* host = sycl::malloc_host<int>(100, q);
  int* shared = sycl::malloc<int>(100, q, alloc::shared);
  EXPECT_EQ(sycl::get_pointer_type(device, ctx), alloc::device);
  EXPECT_EQ(sycl::get_pointer_type(device + 99, ctx), alloc::device);
  EXPECT_EQ(sycl::get_pointer_type(host, ctx), alloc::host);
  EXPECT_EQ(sycl::get_pointer_type(shared, ctx), alloc::shared);
  EXPECT_EQ(sycl::get_pointer_type(shared, other.get_context()), alloc::unknown);
  EXPECT_EQ(sycl::get_pointer_type(&device, ctx), alloc::unknown);
  EXPECT_EQ(sycl::get_pointer_type(nullptr, ctx), alloc::unknown);
  EXPECT_EQ(sycl::get_pointer_device(shared, ctx), q.get_device());
  EXPECT_THROW(sycl::get_pointer_device(&device, ctx), sycl::exception);
  EXPECT_THROW(sycl::free(shared, other), sycl::exception);
  EXPECT_THROW(sycl::free(shared + 1, q), sycl::exception);
  for (int* memory : {device, host, shared, static_cast<int*>(nullptr)})
    sycl::free(memory, q);
  EXPECT_EQ(sycl::get_pointer_type(shared, ctx), alloc::unknown);
}

TEST(usm, alignment_is_kept) {
  const sycl::queue q;
  for (std::size_t alignment = 1; alignment <= 1 << 16; alignment *= 2)
    for (const std::size_t bytes : {std::size_t{1}, std::size_t{100}, std::size_t{9} << 20}) {
      void* memory = sycl::aligned_alloc_shared(alignment, bytes, q);
      ASSERT_NE(memory, nullptr);
      EXPECT_EQ(reinterpret_cast<std::uintptr_t>(memory) % alignment, 0u);
      static_cast<char*>(memory)[bytes - 1] = 1;
      sycl::free(memory, q);
    }
  struct alignas(256) wide {
    char c[256];
  };
  wide* typed = sycl::aligned_alloc_device<wide>(8, 3, q);
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(typed) % 256, 0u);
  sycl::free(typed, q);
  EXPECT_EQ(sycl::aligned_alloc_host(24, 100, q), nullptr) << "no power of two";
}

TEST(usm, failures_give_null) {
  const sycl::queue q;
  EXPECT_EQ(sycl::malloc_device(0, q), nullptr);
  EXPECT_EQ(sycl::malloc_device(static_cast<std::size_t>(-1), q), nullptr);
  EXPECT_EQ(sycl::malloc_shared<double>(static_cast<std::size_t>(-1) / 4, q), nullptr)
      << "the product overflows";
  EXPECT_EQ(sycl::malloc(8, q, alloc::unknown), nullptr);
  setenv("QORIN_ALLOCATION_LIMIT", "1000", 1);
  EXPECT_EQ(sycl::malloc_device(1001, q), nullptr);
  sycl::buffer<char> large{sycl::range<1>(1001)};
  try {
    sycl::host_accessor a(large);
    ADD_FAILURE() << "a buffer beyond the limit got memory";
  } catch (const sycl::exception& e) {
    EXPECT_EQ(e.code(), errc::memory_allocation);
  }
  void* allowed = sycl::malloc_device(1000, q);
  EXPECT_NE(allowed, nullptr);
  unsetenv("QORIN_ALLOCATION_LIMIT");
  sycl::free(allowed, q);
  const sycl::device gpu(sycl::gpu_selector_v);
  EXPECT_THROW(sycl::malloc_device(8, gpu, q.get_context()), sycl::exception);
}

TEST(usm, the_allocator_serves_containers) {
  sycl::queue q{sycl::gpu_selector_v};
  using allocator = sycl::usm_allocator<int, alloc::shared, 128>;
  const allocator from(q);
  EXPECT_EQ(from, (sycl::usm_allocator<double, alloc::shared, 128>(q)));
  EXPECT_NE(from, allocator(sycl::queue()));
  std::vector<int, allocator> values(1000, 1, from);
  EXPECT_EQ(sycl::get_pointer_type(values.data(), q.get_context()), alloc::shared);
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(values.data()) % 128, 0u);
  q.parallel_for(values.size(), [p = values.data()](sycl::id<1> i) { p[i] += static_cast<int>(i); }).wait();
  EXPECT_EQ(values[999], 1000);
  EXPECT_THROW(values.reserve(static_cast<std::size_t>(1) << 60), sycl::exception);
}

} // namespace
