// The names of a vec's elements and halves, once for vec and for its swizzles.
#pragma once

#include <utility>

namespace sycl {

/// Element indices by name, for swizzle<...>().
struct elem {
  static constexpr int x = 0, y = 1, z = 2, w = 3;
  static constexpr int r = 0, g = 1, b = 2, a = 3;
  static constexpr int s0 = 0, s1 = 1, s2 = 2, s3 = 3, s4 = 4, s5 = 5, s6 = 6, s7 = 7;
  static constexpr int s8 = 8, s9 = 9, sA = 10, sB = 11, sC = 12, sD = 13, sE = 14, sF = 15;
};

namespace detail {

/// Derived offers swizzle<indices...>() in a const and a non-const form. A name that a vec of Count elements
/// does not have is an error where it is used.
template <typename Derived, int Count>
class vec_names {
 public:
#define QORIN_NAME(name, available, ...)                                                                     \
  constexpr auto name() {                                                                                    \
    static_assert(available, "a vec of this many elements has no " #name "()");                              \
    return static_cast<Derived&>(*this).template swizzle<__VA_ARGS__>();                                     \
  }                                                                                                          \
  constexpr auto name() const {                                                                              \
    static_assert(available, "a vec of this many elements has no " #name "()");                              \
    return static_cast<const Derived&>(*this).template swizzle<__VA_ARGS__>();                               \
  }
  QORIN_NAME(x, Count <= 4, 0)
  QORIN_NAME(y, Count >= 2 && Count <= 4, 1)
  QORIN_NAME(z, Count >= 3 && Count <= 4, 2)
  QORIN_NAME(w, Count == 4, 3)
  QORIN_NAME(r, Count == 4, 0)
  QORIN_NAME(g, Count == 4, 1)
  QORIN_NAME(b, Count == 4, 2)
  QORIN_NAME(a, Count == 4, 3)
  QORIN_NAME(s0, Count >= 1, 0)
  QORIN_NAME(s1, Count >= 2, 1)
  QORIN_NAME(s2, Count >= 3, 2)
  QORIN_NAME(s3, Count >= 4, 3)
  QORIN_NAME(s4, Count >= 8, 4)
  QORIN_NAME(s5, Count >= 8, 5)
  QORIN_NAME(s6, Count >= 8, 6)
  QORIN_NAME(s7, Count >= 8, 7)
  QORIN_NAME(s8, Count == 16, 8)
  QORIN_NAME(s9, Count == 16, 9)
  QORIN_NAME(sA, Count == 16, 10)
  QORIN_NAME(sB, Count == 16, 11)
  QORIN_NAME(sC, Count == 16, 12)
  QORIN_NAME(sD, Count == 16, 13)
  QORIN_NAME(sE, Count == 16, 14)
  QORIN_NAME(sF, Count == 16, 15)

#ifdef SYCL_SIMPLE_SWIZZLES
#include <sycl/detail/vec_simple_swizzles.hpp>
#endif
#undef QORIN_NAME

#define QORIN_PART(name, first, step)                                                                        \
  constexpr auto name() {                                                                                    \
    static_assert(Count > 1, "a vec of one element has no " #name "()");                                     \
    return part<first, step>(static_cast<Derived&>(*this), std::make_integer_sequence<int, half_count>());   \
  }                                                                                                          \
  constexpr auto name() const {                                                                              \
    static_assert(Count > 1, "a vec of one element has no " #name "()");                                     \
    return part<first, step>(static_cast<const Derived&>(*this),                                             \
                             std::make_integer_sequence<int, half_count>());                                 \
  }
  QORIN_PART(lo, 0, 1)
  QORIN_PART(hi, half_count, 1)
  QORIN_PART(even, 0, 2)
  QORIN_PART(odd, 1, 2)
#undef QORIN_PART

 private:
  template <int... Indices>
  static constexpr bool has_all() {
    return Count <= 4 && ((Indices < Count) && ...);
  }

  // Three elements halve as the four in whose place they are stored, the last one with an unspecified value.
  static constexpr int half_count = (Count + 1) / 2;

  template <int First, int Step, typename Self, int... K>
  static constexpr auto part(Self& self, std::integer_sequence<int, K...>) {
    return self.template swizzle<(First + K * Step)...>();
  }
};

} // namespace detail
} // namespace sycl
