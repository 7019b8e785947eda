// `local_accessor`: memory that the items of one work-group share while they run.
#pragma once

#include <sycl/accessor.hpp>
#include <sycl/detail/work_group.hpp>

namespace sycl {

namespace detail {
/// Sets bytes aside in the local memory of the launch that `commands` records; the result is their offset.
QORIN_EXPORT std::size_t reserve_local_memory(handler& commands, std::size_t bytes, std::size_t alignment);
} // namespace detail

/// Each work-group has memory of its own, at the same offset. A copy made while a group runs, such as the kernel's,
/// points into the memory of that group.
template <class T, int Dimensions = 1>
class local_accessor {
 public:
  using value_type = T;
  using reference = T&;
  using const_reference = const T&;
  using size_type = std::size_t;
  template <access::decorated IsDecorated>
  using accessor_ptr = multi_ptr<value_type, access::address_space::local_space, IsDecorated>;

  local_accessor() = default;
  local_accessor(range<Dimensions> extent, handler& commands, const property_list& = {})
      : offset_(detail::reserve_local_memory(commands, extent.size() * sizeof(T), alignof(T))),
        range_(extent) {}
  local_accessor(const local_accessor& other) noexcept
      : data_(resolve(other.offset_)), offset_(other.offset_), range_(other.range_) {}
  local_accessor& operator=(const local_accessor& other) noexcept {
    data_ = resolve(other.offset_);
    offset_ = other.offset_;
    range_ = other.range_;
    return *this;
  }

  std::size_t size() const noexcept { return range_.size(); }
  std::size_t byte_size() const noexcept { return size() * sizeof(T); }
  std::size_t max_size() const noexcept { return static_cast<std::size_t>(-1) / sizeof(T); }
  bool empty() const noexcept { return size() == 0; }
  range<Dimensions> get_range() const { return range_; }

  reference operator[](id<Dimensions> index) const { return data_[detail::linear(index, range_)]; }
  template <int N = Dimensions, std::enable_if_t<(N > 1), int> = 0>
  auto operator[](std::size_t index) const {
    return detail::partial_subscript<T, Dimensions, Dimensions>(data_, range_)[index];
  }

  T* begin() const noexcept { return data_; }
  T* end() const noexcept { return data_ + size(); }
  T* get_pointer() const noexcept { return data_; }
  template <access::decorated IsDecorated>
  accessor_ptr<IsDecorated> get_multi_ptr() const noexcept {
    return accessor_ptr<IsDecorated>(data_);
  }

  friend bool operator==(const local_accessor& a, const local_accessor& b) {
    return a.offset_ == b.offset_ && a.range_ == b.range_ && a.data_ == b.data_;
  }
  friend bool operator!=(const local_accessor& a, const local_accessor& b) { return !(a == b); }

 private:
  static T* resolve(std::size_t offset) noexcept {
    char* const memory = detail::local_memory();
    return memory == nullptr ? nullptr : reinterpret_cast<T*>(memory + offset);
  }

  T* data_ = nullptr;
  std::size_t offset_ = 0;
  range<Dimensions> range_;
};

} // namespace sycl
