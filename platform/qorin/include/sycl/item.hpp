// `item`: what a work-item of a range kernel knows about itself.
#pragma once

#include <sycl/id.hpp>

namespace sycl {

namespace detail {
struct item_access;
}

template <int Dimensions = 1, bool WithOffset = true>
class item : public detail::number_if_1d<item<Dimensions, WithOffset>, Dimensions> {
 public:
  static constexpr int dimensions = Dimensions;

  item() = delete;

  constexpr id<Dimensions> get_id() const { return id_; }
  constexpr std::size_t get_id(int dimension) const { return id_[dimension]; }
  constexpr std::size_t operator[](int dimension) const { return id_[dimension]; }
  constexpr range<Dimensions> get_range() const { return range_; }
  constexpr std::size_t get_range(int dimension) const { return range_[dimension]; }
  constexpr std::size_t get_linear_id() const { return detail::linear(id_, range_); }
  /// Always zero: range kernels with an offset are deprecated and not offered.
  template <bool HasOffset = WithOffset, std::enable_if_t<HasOffset, int> = 0>
  constexpr id<Dimensions> get_offset() const {
    return {};
  }

  template <typename Other,
            std::enable_if_t<!WithOffset && std::is_same_v<Other, item<Dimensions, true>>, int> = 0>
  constexpr operator Other() const {
    return Other(id_, range_);
  }

  friend constexpr bool operator==(const item& a, const item& b) {
    return a.id_ == b.id_ && a.range_ == b.range_;
  }
  friend constexpr bool operator!=(const item& a, const item& b) { return !(a == b); }

 private:
  template <int, bool>
  friend class item;
  friend struct detail::item_access;

  constexpr item(const id<Dimensions>& i, const range<Dimensions>& r) : id_(i), range_(r) {}

  id<Dimensions> id_;
  range<Dimensions> range_;
};

namespace detail {

struct item_access {
  template <int Dimensions>
  static constexpr item<Dimensions, false> make(const id<Dimensions>& i, const range<Dimensions>& r) {
    return {i, r};
  }
};

} // namespace detail
} // namespace sycl
