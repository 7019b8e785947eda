// `nd_range`: a global range cut into work-groups of one size.
#pragma once

#include <sycl/id.hpp>

namespace sycl {

template <int Dimensions = 1>
class nd_range {
 public:
  static constexpr int dimensions = Dimensions;

  constexpr nd_range(range<Dimensions> global, range<Dimensions> local) : global_(global), local_(local) {}

  /// Deprecated; launching a kernel over it throws errc::feature_not_supported unless the offset is zero.
  constexpr nd_range(range<Dimensions> global, range<Dimensions> local, id<Dimensions> offset)
      : global_(global), local_(local), offset_(offset) {}

  constexpr range<Dimensions> get_global_range() const { return global_; }
  constexpr range<Dimensions> get_local_range() const { return local_; }
  constexpr range<Dimensions> get_group_range() const { return global_ / local_; }
  constexpr id<Dimensions> get_offset() const { return offset_; }

  friend constexpr bool operator==(const nd_range& a, const nd_range& b) {
    return a.global_ == b.global_ && a.local_ == b.local_ && a.offset_ == b.offset_;
  }
  friend constexpr bool operator!=(const nd_range& a, const nd_range& b) { return !(a == b); }

 private:
  range<Dimensions> global_;
  range<Dimensions> local_;
  id<Dimensions> offset_;
};

} // namespace sycl
