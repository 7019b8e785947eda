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
class local_accessor : public detail::element_sequence<local_accessor<T, Dimensions>, T, T*, const T*>,
                       public detail::lone_element<local_accessor<T, Dimensions>, Dimensions, T> {
  static constexpr int shape = detail::shape<Dimensions>;
  using sequence = typename local_accessor::element_sequence;

 public:
  using typename sequence::reference;
  using typename sequence::value_type;
  template <access::decorated IsDecorated>
  using accessor_ptr = multi_ptr<value_type, access::address_space::local_space, IsDecorated>;

  local_accessor() = default;
  local_accessor(range<shape> extent, handler& commands, const property_list& = {})
      : offset_(detail::reserve_local_memory(commands, extent.size() * sizeof(T), alignof(T))),
        range_(extent) {}
  template <int N = Dimensions, std::enable_if_t<N == 0, int> = 0>
  local_accessor(handler& commands, const property_list& properties = {})
      : local_accessor(range<1>(1), commands, properties) {}
  local_accessor(const local_accessor& other) noexcept
      : data_(resolve(other.offset_)), offset_(other.offset_), range_(other.range_) {}
  local_accessor& operator=(const local_accessor& other) noexcept {
    data_ = resolve(other.offset_);
    offset_ = other.offset_;
    range_ = other.range_;
    return *this;
  }
  /// The same memory, of which only reading is used.
  template <class U, class = std::enable_if_t<!std::is_const_v<U> && std::is_same_v<const U, T>>>
  local_accessor(const local_accessor<U, Dimensions>& other) noexcept
      : data_(resolve(other.offset_)), offset_(other.offset_), range_(other.range_) {}

  /// Of 0 dimensions: the one element.
  template <int N = Dimensions, std::enable_if_t<N == 0, int> = 0>
  const local_accessor& operator=(const value_type& value) const {
    *data_ = value;
    return *this;
  }

  void swap(local_accessor& other) { std::swap(*this, other); }
  range<shape> get_range() const { return range_; }

  reference operator[](id<shape> index) const { return data_[detail::linear(index, range_)]; }
  template <int N = Dimensions, std::enable_if_t<(N > 1), int> = 0>
  auto operator[](std::size_t index) const {
    return detail::partial_subscript<T, Dimensions, Dimensions>(data_, range_)[index];
  }

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
  template <class, int>
  friend class local_accessor;
  friend sequence;
  friend struct std::hash<local_accessor>;

  template <class Iterator>
  Iterator iterate(std::size_t position) const noexcept {
    return data_ + position;
  }
  static T* resolve(std::size_t offset) noexcept {
    char* const memory = detail::local_memory();
    return memory == nullptr ? nullptr : reinterpret_cast<T*>(memory + offset);
  }

  T* data_ = nullptr;
  std::size_t offset_ = 0;
  range<shape> range_;
};

} // namespace sycl

template <class T, int Dimensions>
struct std::hash<sycl::local_accessor<T, Dimensions>> {
  std::size_t operator()(const sycl::local_accessor<T, Dimensions>& a) const noexcept {
    return std::hash<std::size_t>{}(a.offset_);
  }
};
