// `nd_range`: a global range cut into work-groups of one size.
#pragma once

#include <sycl/id.hpp>

namespace sycl {

template <int Dimensions = 1>
class nd_range {
 public:
  static constexpr int dimensions = Dimensions;

  constexpr nd_range(range<Dimensions> global, range<Dimensions> local) : global_(global), local_(local) {}

  constexpr range<Dimensions> get_global_range() const { return global_; }
  constexpr range<Dimensions> get_local_range() const { return local_; }
  constexpr range<Dimensions> get_group_range() const { return global_ / local_; }

  friend constexpr bool operator==(const nd_range& a, const nd_range& b) {
    return a.global_ == b.global_ && a.local_ == b.local_;
  }
  friend constexpr bool operator!=(const nd_range& a, const nd_range& b) { return !(a == b); }

 private:
  range<Dimensions> global_;
  range<Dimensions> local_;
};

} // namespace sycl
