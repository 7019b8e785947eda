// What accessors of buffers share: the elements, and the box of them that may be used.
#pragma once

#include <sycl/buffer.hpp>

namespace sycl::detail {

/// What is left of a multi-dimensional accessor after some subscripts.
template <class T, int Dimensions, int Left>
class partial_subscript {
 public:
  partial_subscript(T* data, const range<Dimensions>& extent) : data_(data), extent_(extent) {}
  decltype(auto) operator[](std::size_t i) const {
    T* const at = data_ + i * stride();
    if constexpr (Left == 1)
      return static_cast<T&>(*at);
    else
      return partial_subscript<T, Dimensions, Left - 1>(at, extent_);
  }

 private:
  std::size_t stride() const {
    std::size_t result = 1;
    for (int d = Dimensions - Left + 1; d < Dimensions; ++d)
      result *= extent_[d];
    return result;
  }
  T* data_;
  range<Dimensions> extent_;
};

/// Walks the elements of a box within row-major memory.
template <class T, int Dimensions>
class box_iterator {
 public:
  using iterator_category = std::random_access_iterator_tag;
  using value_type = std::remove_const_t<T>;
  using difference_type = std::ptrdiff_t;
  using pointer = T*;
  using reference = T&;

  box_iterator() = default;
  box_iterator(T* data, const range<Dimensions>& memory, const range<Dimensions>& box, std::size_t position)
      : data_(data), memory_(memory), box_(box), position_(position) {}
  T& operator*() const {
    id<Dimensions> at;
    std::size_t rest = position_;
    for (int d = Dimensions - 1; d >= 0; --d) {
      at[d] = rest % box_[d];
      rest /= box_[d];
    }
    return data_[linear(at, memory_)];
  }
  T* operator->() const { return &**this; }
  T& operator[](std::ptrdiff_t distance) const { return *(*this + distance); }
  box_iterator& operator+=(std::ptrdiff_t distance) {
    position_ += static_cast<std::size_t>(distance);
    return *this;
  }
  box_iterator& operator-=(std::ptrdiff_t distance) { return *this += -distance; }
  box_iterator& operator++() { return *this += 1; }
  box_iterator& operator--() { return *this -= 1; }
  box_iterator operator++(int) { return ++*this - 1; }
  box_iterator operator--(int) { return --*this + 1; }
  friend box_iterator operator+(box_iterator a, std::ptrdiff_t distance) { return a += distance; }
  friend box_iterator operator+(std::ptrdiff_t distance, box_iterator a) { return a += distance; }
  friend box_iterator operator-(box_iterator a, std::ptrdiff_t distance) { return a -= distance; }
  friend std::ptrdiff_t operator-(const box_iterator& a, const box_iterator& b) {
    return static_cast<std::ptrdiff_t>(a.position_ - b.position_);
  }
#define QORIN_BOX_ITERATOR_RELATION(op)                                                                      \
  friend bool operator op(const box_iterator& a, const box_iterator& b) {                                    \
    return a.position_ op b.position_;                                                                       \
  }
  QORIN_BOX_ITERATOR_RELATION(==)
  QORIN_BOX_ITERATOR_RELATION(!=)
  QORIN_BOX_ITERATOR_RELATION(<)
  QORIN_BOX_ITERATOR_RELATION(>)
  QORIN_BOX_ITERATOR_RELATION(<=)
  QORIN_BOX_ITERATOR_RELATION(>=)
#undef QORIN_BOX_ITERATOR_RELATION

 private:
  T* data_ = nullptr;
  range<Dimensions> memory_;
  range<Dimensions> box_;
  std::size_t position_ = 0;
};

/// What every accessor says of its elements. Derived makes an iterator at a position.
template <class Derived, class T, class Iterator, class ConstIterator>
class element_sequence {
 public:
  using value_type = T;
  using reference = T&;
  using const_reference = const T&;
  using size_type = std::size_t;
  using difference_type = std::ptrdiff_t;
  using iterator = Iterator;
  using const_iterator = ConstIterator;
  using reverse_iterator = std::reverse_iterator<iterator>;
  using const_reverse_iterator = std::reverse_iterator<const_iterator>;

  std::size_t byte_size() const noexcept { return size() * sizeof(T); }
  std::size_t size() const noexcept { return self().get_range().size(); }
  std::size_t max_size() const noexcept { return static_cast<std::size_t>(-1) / sizeof(T); }
  bool empty() const noexcept { return size() == 0; }

  iterator begin() const noexcept { return self().template iterate<iterator>(0); }
  iterator end() const noexcept { return self().template iterate<iterator>(size()); }
  const_iterator cbegin() const noexcept { return self().template iterate<const_iterator>(0); }
  const_iterator cend() const noexcept { return self().template iterate<const_iterator>(size()); }

  reverse_iterator rbegin() const noexcept { return reverse_iterator(end()); }
  reverse_iterator rend() const noexcept { return reverse_iterator(begin()); }
  const_reverse_iterator crbegin() const noexcept { return const_reverse_iterator(cend()); }
  const_reverse_iterator crend() const noexcept { return const_reverse_iterator(cbegin()); }

 private:
  const Derived& self() const noexcept { return static_cast<const Derived&>(*this); }
};

template <class T, access_mode Mode>
using accessed = std::conditional_t<Mode == access_mode::read, const T, T>;
template <class T, int Dimensions>
using element_iterator = std::conditional_t<Dimensions == 1, T*, box_iterator<T, Dimensions>>;

/// What accessors and host accessors share: the elements and the box of them that may be used.
template <class T, int Dimensions, access_mode Mode>
class element_access : public element_sequence<element_access<T, Dimensions, Mode>, accessed<T, Mode>,
                                               element_iterator<accessed<T, Mode>, Dimensions>,
                                               element_iterator<const T, Dimensions>> {
  using sequence = typename element_access::element_sequence;

 public:
  using typename sequence::reference;
  using typename sequence::value_type;

  range<Dimensions> get_range() const { return range_; }
  id<Dimensions> get_offset() const { return offset_; }

  reference operator[](id<Dimensions> index) const { return data_[detail::linear(index, memory_range_)]; }
  template <int N = Dimensions, std::enable_if_t<(N > 1), int> = 0>
  auto operator[](std::size_t index) const {
    return partial_subscript<value_type, Dimensions, Dimensions>(data_, memory_range_)[index];
  }

  template <class Property>
  bool has_property() const noexcept {
    return std::is_same_v<Property, property::no_init> && no_init_;
  }
  /// Throws errc::invalid for properties that were not given.
  template <class Property>
  Property get_property() const {
    return has_property<Property>() ? Property() : property_list().get_property<Property>();
  }

  friend bool operator==(const element_access& a, const element_access& b) {
    return a.memory_ == b.memory_ && a.data_ == b.data_ && a.range_ == b.range_ && a.offset_ == b.offset_;
  }
  friend bool operator!=(const element_access& a, const element_access& b) { return !(a == b); }

 protected:
  element_access() = default;
  element_access(buffer_state& memory, std::size_t first, const range<Dimensions>& memory_range,
                 const range<Dimensions>& box, const id<Dimensions>& offset, bool no_init)
      : memory_(&memory), memory_range_(memory_range), range_(box), offset_(offset), no_init_(no_init) {
    if (Mode == access_mode::read && no_init)
      throw exception(make_error_code(errc::invalid), "no_init, and an accessor that reads");
    for (int d = 0; d < Dimensions; ++d)
      if (offset[d] > memory_range[d] || box[d] > memory_range[d] - offset[d])
        throw exception(make_error_code(errc::invalid), "an accessor reaches beyond its buffer");
    if (memory_range.size() > 0)
      data_ = static_cast<value_type*>(memory.data()) + first + detail::linear(offset, memory_range);
  }

  /// The same request, of which only reading is used.
  template <access_mode Other>
  explicit element_access(const element_access<T, Dimensions, Other>& other)
      : data_(other.data_), memory_(other.memory_), memory_range_(other.memory_range_), range_(other.range_),
        offset_(other.offset_), no_init_(other.no_init_) {}

  /// The first element of the buffer, even where the accessor's box starts later.
  value_type* buffer_data() const {
    return data_ == nullptr ? nullptr : data_ - detail::linear(offset_, memory_range_);
  }

  value_type* data_ = nullptr; // first element of the box
  buffer_state* memory_ = nullptr;
  range<Dimensions> memory_range_;
  range<Dimensions> range_;
  id<Dimensions> offset_;
  bool no_init_ = false;

 private:
  template <class, int, access_mode>
  friend class element_access;
  friend sequence;
  friend struct element_hash;

  template <class Iterator>
  Iterator iterate(std::size_t position) const noexcept {
    if constexpr (Dimensions == 1)
      return data_ + position;
    else
      return Iterator(data_, memory_range_, range_, position);
  }
};

struct element_hash {
  template <class T, int Dimensions, access_mode Mode>
  std::size_t operator()(const element_access<T, Dimensions, Mode>& a) const noexcept {
    return std::hash<const void*>{}(a.memory_) ^ std::hash<const void*>{}(a.data_);
  }
};

/// Whether an accessor of mode From stands for a reading one too.
template <access_mode From, access_mode To>
inline constexpr bool reads_as = (To == access_mode::read) && (From != access_mode::write);

/// Accessors of 0 dimensions are of one element, and of buffers of one dimension.
template <int Dimensions>
inline constexpr int shape = Dimensions == 0 ? 1 : Dimensions;

/// The box of an accessor that is given none.
template <int Dimensions>
range<shape<Dimensions>> whole(const range<shape<Dimensions>>& memory) {
  if constexpr (Dimensions == 0)
    return memory.size() > 0 ? range<1>(1) : range<1>(0);
  else
    return memory;
}

/// Accessors of 0 dimensions stand for their element.
template <class Derived, int Dimensions, class T>
class lone_element {};
template <class Derived, class T>
class lone_element<Derived, 0, T> {
 public:
  operator T&() const { return *static_cast<const Derived*>(this)->begin(); }
};

} // namespace sycl::detail
