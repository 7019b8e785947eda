// Hierarchical kernels: the kernel runs once for each work-group and says itself what its items do.
#pragma once

#include <sycl/detail/range_kernel.hpp>
#include <sycl/group.hpp>

namespace sycl {

/// A work-item within parallel_for_work_item. The logical items are those asked for; all of them run on one thread, so
/// there are as many physical ones as the group was launched with.
template <int Dimensions = 1>
class h_item {
 public:
  static constexpr int dimensions = Dimensions;

  h_item() = delete;

  item<Dimensions, false> get_global() const { return global_; }
  item<Dimensions, false> get_local() const { return logical_; }
  item<Dimensions, false> get_logical_local() const { return logical_; }
  item<Dimensions, false> get_physical_local() const { return physical_; }

#define QORIN_H_ITEM_QUERY(name, of)                                                                         \
  range<Dimensions> get_##name##_range() const {                                                             \
    return of.get_range();                                                                                   \
  }                                                                                                          \
  std::size_t get_##name##_range(int dimension) const {                                                      \
    return of.get_range(dimension);                                                                          \
  }                                                                                                          \
  id<Dimensions> get_##name##_id() const {                                                                   \
    return of.get_id();                                                                                      \
  }                                                                                                          \
  std::size_t get_##name##_id(int dimension) const {                                                         \
    return of.get_id(dimension);                                                                             \
  }
  QORIN_H_ITEM_QUERY(global, global_)
  QORIN_H_ITEM_QUERY(local, logical_)
  QORIN_H_ITEM_QUERY(logical_local, logical_)
  QORIN_H_ITEM_QUERY(physical_local, physical_)
#undef QORIN_H_ITEM_QUERY

  friend bool operator==(const h_item& a, const h_item& b) {
    return a.global_ == b.global_ && a.logical_ == b.logical_;
  }
  friend bool operator!=(const h_item& a, const h_item& b) {
    return !(a == b);
  }

 private:
  friend class group<Dimensions>;
  h_item(const group<Dimensions>& g, const id<Dimensions>& at, const range<Dimensions>& logical)
      : logical_(detail::item_access::make(at, logical)),
        physical_(detail::item_access::make(at % g.get_local_range(), g.get_local_range())),
        global_(detail::item_access::make(g.get_group_id() * g.get_local_range() + physical_.get_id(),
                                          g.get_group_range() * g.get_local_range())) {}

  item<Dimensions, false> logical_;
  item<Dimensions, false> physical_;
  item<Dimensions, false> global_;
};

template <int Dimensions>
template <class F>
void group<Dimensions>::parallel_for_work_item(const range<Dimensions>& items, const F& f) const {
  detail::for_each_row(items, 0, static_cast<std::ptrdiff_t>(items.size()),
                       [&](id<Dimensions> at, std::ptrdiff_t first, std::ptrdiff_t last) {
                         for (std::ptrdiff_t i = first; i < last; ++i) {
                           at[Dimensions - 1] = static_cast<std::size_t>(i);
                           f(h_item<Dimensions>(*this, at, items));
                         }
                       });
}

} // namespace sycl
