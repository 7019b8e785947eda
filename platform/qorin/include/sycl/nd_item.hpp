// `nd_item`: what a work-item of an nd_range kernel knows about itself.
#pragma once

#include <sycl/access.hpp>
#include <sycl/group.hpp>

namespace sycl {

namespace access {
enum class fence_space : char { local_space, global_space, global_and_local };
}

template <int Dimensions = 1>
class nd_item {
 public:
  static constexpr int dimensions = Dimensions;

  nd_item() = delete;

  id<Dimensions> get_global_id() const {
    id<Dimensions> result;
    for (int d = 0; d < Dimensions; ++d)
      result[d] = get_global_id(d);
    return result;
  }
  std::size_t get_global_id(int dimension) const {
    return group_.get_group_id(dimension) * group_.get_local_range(dimension) +
           group_.get_local_id(dimension);
  }
  std::size_t get_global_linear_id() const { return detail::linear(get_global_id(), get_global_range()); }
  id<Dimensions> get_local_id() const { return group_.get_local_id(); }
  std::size_t get_local_id(int dimension) const { return group_.get_local_id(dimension); }
  std::size_t get_local_linear_id() const { return group_.get_local_linear_id(); }
  group<Dimensions> get_group() const { return group_; }
  std::size_t get_group(int dimension) const { return group_.get_group_id(dimension); }
  std::size_t get_group_linear_id() const { return group_.get_group_linear_id(); }
  sub_group get_sub_group() const { return detail::group_access::sub_group_of(group_); }
  range<Dimensions> get_group_range() const { return group_.get_group_range(); }
  std::size_t get_group_range(int dimension) const { return group_.get_group_range(dimension); }
  range<Dimensions> get_global_range() const { return group_.get_group_range() * group_.get_local_range(); }
  std::size_t get_global_range(int dimension) const { return get_global_range()[dimension]; }
  range<Dimensions> get_local_range() const { return group_.get_local_range(); }
  std::size_t get_local_range(int dimension) const { return group_.get_local_range(dimension); }
  nd_range<Dimensions> get_nd_range() const { return {get_global_range(), get_local_range()}; }

  /// As group_barrier of the item's group; the memory all spaces live in is one.
  void barrier(access::fence_space = access::fence_space::global_and_local) const {
    detail::group_access::meet(group_, nullptr, nullptr, nullptr);
  }

  /// As the group's.
  template <class To, class From>
  device_event async_work_group_copy(To to, From from, std::size_t count) const {
    return group_.async_work_group_copy(to, from, count);
  }
  template <class To, class From>
  device_event async_work_group_copy(To to, From from, std::size_t count, std::size_t stride) const {
    return group_.async_work_group_copy(to, from, count, stride);
  }
  template <class... Events>
  void wait_for(Events... events) const {
    group_.wait_for(events...);
  }

  friend bool operator==(const nd_item& a, const nd_item& b) {
    return a.group_ == b.group_ && a.get_local_id() == b.get_local_id();
  }
  friend bool operator!=(const nd_item& a, const nd_item& b) { return !(a == b); }

 private:
  friend struct detail::group_access;
  explicit nd_item(const group<Dimensions>& g) : group_(g) {}

  group<Dimensions> group_;
};

} // namespace sycl
