// `id`: where one work-item or element is within a range.
#pragma once

#include <sycl/range.hpp>

namespace sycl {

template <int Dimensions, bool WithOffset>
class item;

template <int Dimensions = 1>
class id : public detail::coordinates<id<Dimensions>, Dimensions>,
           public detail::number_if_1d<id<Dimensions>, Dimensions> {
  using base = detail::coordinates<id, Dimensions>;

 public:
  constexpr id() = default;
  template <int N = Dimensions, std::enable_if_t<N == 1, int> = 0>
  constexpr id(std::size_t first) : base(first) {}
  template <int N = Dimensions, std::enable_if_t<N == 2, int> = 0>
  constexpr id(std::size_t first, std::size_t second) : base(first, second) {}
  template <int N = Dimensions, std::enable_if_t<N == 3, int> = 0>
  constexpr id(std::size_t first, std::size_t second, std::size_t third) : base(first, second, third) {}
  constexpr id(const range<Dimensions>& r) {
    for (int d = 0; d < Dimensions; ++d)
      this->values_[d] = r[d];
  }
  template <bool WithOffset>
  constexpr id(const item<Dimensions, WithOffset>& i) : id(i.get_id()) {}

  template <class T, int N = Dimensions, std::enable_if_t<N == 1 && std::is_integral_v<T>, int> = 0>
  friend constexpr bool operator==(const id& a, T b) {
    return a.values_[0] == static_cast<std::size_t>(b);
  }
  template <class T, int N = Dimensions, std::enable_if_t<N == 1 && std::is_integral_v<T>, int> = 0>
  friend constexpr bool operator!=(const id& a, T b) {
    return !(a == b);
  }
};

id(std::size_t)->id<1>;
id(std::size_t, std::size_t)->id<2>;
id(std::size_t, std::size_t, std::size_t)->id<3>;

namespace detail {

/// Position in row-major order: the last dimension varies fastest.
template <int Dimensions>
constexpr std::size_t linear(const id<Dimensions>& i, const range<Dimensions>& r) {
  std::size_t result = i[0];
  for (int d = 1; d < Dimensions; ++d)
    result = result * r[d] + i[d];
  return result;
}

} // namespace detail
} // namespace sycl
