#include <cstddef>
#include <type_traits>

#include <gtest/gtest.h>

#include <sycl/device_library.hpp>

namespace {

using sycl::multi_ptr;
using sycl::access::address_space;
using sycl::access::decorated;

TEST(multi_ptr, is_a_random_access_pointer) {
  int array[5] = {0, 1, 2, 3, 4};
  auto pointer = sycl::address_space_cast<address_space::global_space, decorated::no>(array + 1);
  static_assert(std::is_same_v<decltype(pointer), sycl::raw_global_ptr<int>>);
  static_assert(std::is_same_v<sycl::global_ptr<int>, sycl::raw_global_ptr<int>>);
  EXPECT_EQ(*pointer, 1);
  EXPECT_EQ(pointer[-1], 0);
  EXPECT_EQ(*pointer++, 1);
  EXPECT_EQ(*++pointer, 3);
  EXPECT_EQ(*(pointer - 2), 1);
  EXPECT_EQ(*(1 + pointer), 4);
  pointer -= 3;
  EXPECT_EQ(pointer.get(), array);
  EXPECT_EQ((pointer + 4) - pointer, 4);
  EXPECT_TRUE(pointer < pointer + 1 && pointer == pointer && pointer != nullptr);
  *pointer = 9;
  EXPECT_EQ(array[0], 9);
  pointer.prefetch(5);
  pointer = nullptr;
  EXPECT_EQ(pointer.get_raw(), nullptr);
  struct point {
    int x;
  } p{7};
  EXPECT_EQ((sycl::raw_private_ptr<point>(&p)->x), 7);
}

TEST(multi_ptr, converts_between_spaces_as_far_as_they_allow) {
  using global = sycl::decorated_global_ptr<int>;
  using local = sycl::decorated_local_ptr<int>;
  using generic = sycl::raw_generic_ptr<int>;
  static_assert(std::is_convertible_v<global, generic> && std::is_convertible_v<local, generic>);
  static_assert(std::is_convertible_v<global, sycl::raw_global_ptr<int>>);
  static_assert(std::is_convertible_v<global, sycl::raw_global_ptr<const int>>);
  static_assert(!std::is_convertible_v<sycl::raw_global_ptr<const int>, global>);
  static_assert(!std::is_constructible_v<local, global> && !std::is_convertible_v<generic, global>);
  static_assert(std::is_constructible_v<global, generic>);
  static_assert(!std::is_convertible_v<int*, global>);
  static_assert(sizeof(global) == sizeof(int*) && std::is_trivially_copyable_v<global>);

  int object = 3;
  const global pointer(&object);
  const multi_ptr<void, address_space::global_space, decorated::yes> untyped = pointer;
  EXPECT_EQ(*global(untyped), 3);
  const multi_ptr<const void, address_space::generic_space, decorated::no> readable = untyped;
  EXPECT_EQ(readable.get(), &object);
  EXPECT_EQ(global(generic(pointer)), pointer);
}

// What accessors offer, without being one.
struct memory {
  int* data;
  template <decorated D>
  sycl::global_ptr<int, D> get_multi_ptr() const {
    return sycl::global_ptr<int, D>(data);
  }
};

TEST(multi_ptr, is_made_from_what_gives_one) {
  int object = 8;
  const sycl::raw_global_ptr<const int> pointer = memory{&object};
  EXPECT_EQ(*pointer, 8);
  static_assert(!std::is_convertible_v<memory, sycl::raw_local_ptr<int>>);
}

} // namespace
