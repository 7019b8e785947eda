// `group` and `sub_group`: the items that can wait for each other, and what an item knows about them.
#pragma once

#include <sycl/detail/work_group.hpp>
#include <sycl/memory_order.hpp>
#include <sycl/multi_ptr.hpp>
#include <sycl/nd_range.hpp>

namespace sycl {

namespace detail {
struct group_access;
}
template <int Dimensions>
class nd_item;

/// A copy by async_work_group_copy. The last item to ask for it makes it, and the others wait for that, so it is
/// complete from the start.
class device_event {
 public:
  void wait() const noexcept {}
};

template <int Dimensions = 1>
class group {
 public:
  using id_type = id<Dimensions>;
  using range_type = range<Dimensions>;
  using linear_id_type = std::size_t;
  static constexpr int dimensions = Dimensions;
  static constexpr memory_scope fence_scope = memory_scope::work_group;

  group() = delete;

  id<Dimensions> get_group_id() const { return group_id_; }
  std::size_t get_group_id(int dimension) const { return group_id_[dimension]; }
  std::size_t operator[](int dimension) const { return group_id_[dimension]; }
  id<Dimensions> get_local_id() const { return local_id_; }
  std::size_t get_local_id(int dimension) const { return local_id_[dimension]; }
  range<Dimensions> get_local_range() const { return local_range_; }
  std::size_t get_local_range(int dimension) const { return local_range_[dimension]; }
  range<Dimensions> get_group_range() const { return group_range_; }
  std::size_t get_group_range(int dimension) const { return group_range_[dimension]; }
  range<Dimensions> get_max_local_range() const { return local_range_; }
  std::size_t get_group_linear_id() const { return detail::linear(group_id_, group_range_); }
  std::size_t get_group_linear_range() const { return group_range_.size(); }
  std::size_t get_local_linear_id() const { return detail::linear(local_id_, local_range_); }
  std::size_t get_local_linear_range() const { return local_range_.size(); }
  bool leader() const { return get_local_linear_id() == 0; }

  /// Copies `count` elements, `stride` apart in global memory and side by side in local memory. All items of the
  /// group call it, with equal arguments.
  template <class To, class From>
  device_event async_work_group_copy(decorated_local_ptr<To> to, decorated_global_ptr<From> from,
                                     std::size_t count, std::size_t stride = 1) const {
    return copy_together(to.get(), 1, from.get(), stride, count);
  }
  template <class To, class From>
  device_event async_work_group_copy(decorated_global_ptr<To> to, decorated_local_ptr<From> from,
                                     std::size_t count, std::size_t stride = 1) const {
    return copy_together(to.get(), stride, from.get(), 1, count);
  }
  template <class... Events>
  void wait_for(Events... events) const {
    (events.wait(), ...);
  }

  /// In hierarchical kernels: calls `f(h_item)` for the items of the group, or for as many as are given.
  template <class F>
  void parallel_for_work_item(const F& f) const {
    parallel_for_work_item(local_range_, f);
  }
  template <class F>
  void parallel_for_work_item(const range<Dimensions>& items, const F& f) const;

  friend bool operator==(const group& a, const group& b) {
    return a.group_id_ == b.group_id_ && a.group_range_ == b.group_range_ && a.local_range_ == b.local_range_;
  }
  friend bool operator!=(const group& a, const group& b) { return !(a == b); }

 private:
  friend struct detail::group_access;
  group(detail::work_group& members, const id<Dimensions>& group_id, const range<Dimensions>& group_range,
        const id<Dimensions>& local_id, const range<Dimensions>& local_range)
      : members_(&members), group_id_(group_id), group_range_(group_range), local_id_(local_id),
        local_range_(local_range) {}

  template <class To, class From>
  device_event copy_together(To* to, std::size_t to_stride, const From* from, std::size_t from_stride,
                             std::size_t count) const {
    static_assert(std::is_same_v<To, std::remove_const_t<From>>, "elements of one type");
    const auto copy = [=] {
      for (std::size_t i = 0; i < count; ++i)
        to[i * to_stride] = from[i * from_stride];
    };
    members_->meet_group(
        get_local_linear_id(), nullptr,
        [](void* const*, std::size_t, const void* c) { (*static_cast<decltype(copy)*>(c))(); }, &copy);
    return {};
  }

  detail::work_group* members_;
  id<Dimensions> group_id_;
  range<Dimensions> group_range_;
  id<Dimensions> local_id_;
  range<Dimensions> local_range_;
};

/// Up to detail::sub_group_size consecutive items of a group; the last sub-group may be smaller.
class sub_group {
 public:
  using id_type = id<1>;
  using range_type = range<1>;
  using linear_id_type = std::uint32_t;
  static constexpr int dimensions = 1;
  static constexpr memory_scope fence_scope = memory_scope::sub_group;

  sub_group() = delete;

  id<1> get_group_id() const { return {number()}; }
  id<1> get_local_id() const { return {item_ % detail::sub_group_size}; }
  range<1> get_local_range() const { return {size()}; }
  range<1> get_group_range() const {
    return {(group_items_ + detail::sub_group_size - 1) / detail::sub_group_size};
  }
  range<1> get_max_local_range() const { return {detail::sub_group_size}; }
  std::uint32_t get_group_linear_id() const { return static_cast<std::uint32_t>(number()); }
  std::uint32_t get_group_linear_range() const { return static_cast<std::uint32_t>(get_group_range()[0]); }
  std::uint32_t get_local_linear_id() const {
    return static_cast<std::uint32_t>(item_ % detail::sub_group_size);
  }
  std::uint32_t get_local_linear_range() const { return static_cast<std::uint32_t>(size()); }
  bool leader() const { return get_local_linear_id() == 0; }

  friend bool operator==(const sub_group& a, const sub_group& b) {
    return a.members_ == b.members_ && a.number() == b.number();
  }
  friend bool operator!=(const sub_group& a, const sub_group& b) { return !(a == b); }

 private:
  friend struct detail::group_access;
  sub_group(detail::work_group& members, std::size_t item, std::size_t group_items)
      : members_(&members), item_(item), group_items_(group_items) {}

  std::size_t number() const { return item_ / detail::sub_group_size; }
  std::size_t size() const {
    const std::size_t left = group_items_ - number() * detail::sub_group_size;
    return left < detail::sub_group_size ? left : detail::sub_group_size;
  }

  detail::work_group* members_;
  std::size_t item_;
  std::size_t group_items_;
};

template <class T>
struct is_group : std::false_type {};
template <int Dimensions>
struct is_group<group<Dimensions>> : std::true_type {};
template <>
struct is_group<sub_group> : std::true_type {};
template <class T>
inline constexpr bool is_group_v = is_group<T>::value;

namespace detail {

struct group_access {
  template <int Dimensions>
  static group<Dimensions> make(work_group& members, const id<Dimensions>& group_id,
                                const range<Dimensions>& group_range, const id<Dimensions>& local_id,
                                const range<Dimensions>& local_range) {
    return {members, group_id, group_range, local_id, local_range};
  }
  /// The group of a hierarchical kernel: one item stands for all of them.
  template <int Dimensions>
  static group<Dimensions> with_items(group<Dimensions> g, const range<Dimensions>& items) {
    g.local_range_ = items;
    return g;
  }
  template <int Dimensions>
  static nd_item<Dimensions> item_of(const group<Dimensions>& g) {
    return nd_item<Dimensions>(g);
  }
  template <int Dimensions>
  static sub_group sub_group_of(const group<Dimensions>& g) {
    return {*g.members_, g.get_local_linear_id(), g.get_local_linear_range()};
  }
  template <int Dimensions>
  static void meet(const group<Dimensions>& g, void* brought, meeting_action action, const void* context) {
    g.members_->meet_group(g.get_local_linear_id(), brought, action, context);
  }
  static void meet(const sub_group& g, void* brought, meeting_action action, const void* context) {
    g.members_->meet_sub_group(g.number(), g.get_local_linear_id(), brought, action, context);
  }
};

} // namespace detail
} // namespace sycl
