// `range`: how many work-items or elements there are in each dimension.
#pragma once

#include <sycl/detail/coordinates.hpp>

namespace sycl {

template <int Dimensions = 1>
class range : public detail::coordinates<range<Dimensions>, Dimensions> {
  using base = detail::coordinates<range, Dimensions>;

 public:
  constexpr range() = default;
  template <int N = Dimensions, std::enable_if_t<N == 1, int> = 0>
  constexpr range(std::size_t first) : base(first) {}
  template <int N = Dimensions, std::enable_if_t<N == 2, int> = 0>
  constexpr range(std::size_t first, std::size_t second) : base(first, second) {}
  template <int N = Dimensions, std::enable_if_t<N == 3, int> = 0>
  constexpr range(std::size_t first, std::size_t second, std::size_t third) : base(first, second, third) {}

  constexpr std::size_t size() const {
    std::size_t product = 1;
    for (std::size_t extent : this->values_)
      product *= extent;
    return product;
  }
};

range(std::size_t)->range<1>;
range(std::size_t, std::size_t)->range<2>;
range(std::size_t, std::size_t, std::size_t)->range<3>;

} // namespace sycl
