// What `id` and `range` share: one to three unsigned coordinates with elementwise operators.
#pragma once

#include <sycl/detail/config.hpp>

#include <type_traits>

namespace sycl::detail {

/// One-dimensional ids and items are numbers where a number is wanted.
template <class Derived, int Dimensions>
class number_if_1d {};
template <class Derived>
class number_if_1d<Derived, 1> {
 public:
  constexpr operator std::size_t() const { return (*static_cast<const Derived*>(this))[0]; }
};

template <class Derived, int Dimensions>
class coordinates {
  static_assert(Dimensions >= 1 && Dimensions <= 3, "one to three dimensions");
  template <class T>
  using if_integer = std::enable_if_t<std::is_integral_v<T>, int>;

 public:
  static constexpr int dimensions = Dimensions;

  constexpr std::size_t get(int dimension) const { return values_[dimension]; }
  constexpr std::size_t& operator[](int dimension) { return values_[dimension]; }
  constexpr std::size_t operator[](int dimension) const { return values_[dimension]; }

  friend constexpr bool operator==(const Derived& a, const Derived& b) {
    for (int d = 0; d < Dimensions; ++d)
      if (a.values_[d] != b.values_[d])
        return false;
    return true;
  }
  friend constexpr bool operator!=(const Derived& a, const Derived& b) { return !(a == b); }

#define QORIN_COORDINATES_OPERATOR(op)                                                                       \
  friend constexpr Derived operator op(const Derived& a, const Derived& b) {                                 \
    Derived result = a;                                                                                      \
    for (int d = 0; d < Dimensions; ++d)                                                                     \
      result.values_[d] = a.values_[d] op b.values_[d];                                                      \
    return result;                                                                                           \
  }                                                                                                          \
  template <class T, if_integer<T> = 0>                                                                      \
  friend constexpr Derived operator op(const Derived& a, T b) {                                              \
    Derived result = a;                                                                                      \
    for (int d = 0; d < Dimensions; ++d)                                                                     \
      result.values_[d] = a.values_[d] op static_cast<std::size_t>(b);                                       \
    return result;                                                                                           \
  }                                                                                                          \
  template <class T, if_integer<T> = 0>                                                                      \
  friend constexpr Derived operator op(T a, const Derived& b) {                                              \
    Derived result = b;                                                                                      \
    for (int d = 0; d < Dimensions; ++d)                                                                     \
      result.values_[d] = static_cast<std::size_t>(a) op b.values_[d];                                       \
    return result;                                                                                           \
  }

  QORIN_COORDINATES_OPERATOR(+)
  QORIN_COORDINATES_OPERATOR(-)
  QORIN_COORDINATES_OPERATOR(*)
  QORIN_COORDINATES_OPERATOR(/)
  QORIN_COORDINATES_OPERATOR(%)
  QORIN_COORDINATES_OPERATOR(<<)
  QORIN_COORDINATES_OPERATOR(>>)
  QORIN_COORDINATES_OPERATOR(&)
  QORIN_COORDINATES_OPERATOR(|)
  QORIN_COORDINATES_OPERATOR(^)
  QORIN_COORDINATES_OPERATOR(&&)
  QORIN_COORDINATES_OPERATOR(||)
  QORIN_COORDINATES_OPERATOR(<)
  QORIN_COORDINATES_OPERATOR(>)
  QORIN_COORDINATES_OPERATOR(<=)
  QORIN_COORDINATES_OPERATOR(>=)
#undef QORIN_COORDINATES_OPERATOR

#define QORIN_COORDINATES_ASSIGNMENT(op)                                                                     \
  friend constexpr Derived& operator op##=(Derived& a, const Derived& b) {                                   \
    return a = a op b;                                                                                       \
  }                                                                                                          \
  template <class T, if_integer<T> = 0>                                                                      \
  friend constexpr Derived& operator op##=(Derived& a, T b) {                                                \
    return a = a op b;                                                                                       \
  }

  QORIN_COORDINATES_ASSIGNMENT(+)
  QORIN_COORDINATES_ASSIGNMENT(-)
  QORIN_COORDINATES_ASSIGNMENT(*)
  QORIN_COORDINATES_ASSIGNMENT(/)
  QORIN_COORDINATES_ASSIGNMENT(%)
  QORIN_COORDINATES_ASSIGNMENT(<<)
  QORIN_COORDINATES_ASSIGNMENT(>>)
  QORIN_COORDINATES_ASSIGNMENT(&)
  QORIN_COORDINATES_ASSIGNMENT(|)
  QORIN_COORDINATES_ASSIGNMENT(^)
#undef QORIN_COORDINATES_ASSIGNMENT

  friend constexpr Derived operator+(const Derived& a) {
    return a;
  }
  friend constexpr Derived operator-(const Derived& a) {
    return std::size_t{0} - a;
  }
  friend constexpr Derived& operator++(Derived& a) {
    return a = a + 1;
  }
  friend constexpr Derived& operator--(Derived& a) {
    return a = a - 1;
  }
  friend constexpr Derived operator++(Derived& a, int) {
    const Derived before = a;
    ++a;
    return before;
  }
  friend constexpr Derived operator--(Derived& a, int) {
    const Derived before = a;
    --a;
    return before;
  }

 protected:
  constexpr coordinates() = default;
  constexpr explicit coordinates(std::size_t first) : values_{first} {}
  constexpr coordinates(std::size_t first, std::size_t second) : values_{first, second} {}
  constexpr coordinates(std::size_t first, std::size_t second, std::size_t third)
      : values_{first, second, third} {}

  std::size_t values_[Dimensions]{};
};

} // namespace sycl::detail
