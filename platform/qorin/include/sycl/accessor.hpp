// `accessor`: a command's request for a buffer and, inside the command, its way to the elements. Accessors are plain
// pointers with extents, cheap to copy and transparent to the compiler; the command keeps the buffer alive.
#pragma once

#include <sycl/buffer.hpp>
#include <sycl/item.hpp>
#include <sycl/multi_ptr.hpp>

namespace sycl {

namespace detail {

/// Enters the request into the command group that `commands` records.
QORIN_EXPORT void request(handler& commands, buffer_state& memory, access_mode mode);

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
  using iterator_category = std::forward_iterator_tag;
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
  box_iterator& operator++() {
    ++position_;
    return *this;
  }
  box_iterator operator++(int) {
    const box_iterator before = *this;
    ++position_;
    return before;
  }
  friend bool operator==(const box_iterator& a, const box_iterator& b) { return a.position_ == b.position_; }
  friend bool operator!=(const box_iterator& a, const box_iterator& b) { return !(a == b); }

 private:
  T* data_ = nullptr;
  range<Dimensions> memory_;
  range<Dimensions> box_;
  std::size_t position_ = 0;
};

/// What accessors and host accessors share: the elements and the box of them that may be used.
template <class T, int Dimensions, access_mode Mode>
class element_access {
 public:
  using value_type = std::conditional_t<Mode == access_mode::read, const T, T>;
  using reference = value_type&;
  using const_reference = const T&;
  using size_type = std::size_t;
  using difference_type = std::ptrdiff_t;
  using iterator = std::conditional_t<Dimensions == 1, value_type*, box_iterator<value_type, Dimensions>>;
  using const_iterator = std::conditional_t<Dimensions == 1, const T*, box_iterator<const T, Dimensions>>;

  std::size_t byte_size() const noexcept { return size() * sizeof(T); }
  std::size_t size() const noexcept { return range_.size(); }
  std::size_t max_size() const noexcept { return static_cast<std::size_t>(-1) / sizeof(T); }
  bool empty() const noexcept { return size() == 0; }
  range<Dimensions> get_range() const { return range_; }
  id<Dimensions> get_offset() const { return offset_; }

  reference operator[](id<Dimensions> index) const { return data_[detail::linear(index, memory_range_)]; }
  template <int N = Dimensions, std::enable_if_t<(N > 1), int> = 0>
  auto operator[](std::size_t index) const {
    return partial_subscript<value_type, Dimensions, Dimensions>(data_, memory_range_)[index];
  }

  iterator begin() const noexcept { return iterate<iterator>(0); }
  iterator end() const noexcept { return iterate<iterator>(size()); }
  const_iterator cbegin() const noexcept { return iterate<const_iterator>(0); }
  const_iterator cend() const noexcept { return iterate<const_iterator>(size()); }

  friend bool operator==(const element_access& a, const element_access& b) {
    return a.memory_ == b.memory_ && a.data_ == b.data_ && a.range_ == b.range_ && a.offset_ == b.offset_;
  }
  friend bool operator!=(const element_access& a, const element_access& b) { return !(a == b); }

 protected:
  element_access() = default;
  element_access(buffer_state& memory, std::size_t first, const range<Dimensions>& memory_range,
                 const range<Dimensions>& box, const id<Dimensions>& offset)
      : memory_(&memory), memory_range_(memory_range), range_(box), offset_(offset) {
    for (int d = 0; d < Dimensions; ++d)
      if (offset[d] > memory_range[d] || box[d] > memory_range[d] - offset[d])
        throw exception(make_error_code(errc::invalid), "an accessor reaches beyond its buffer");
    if (memory_range.size() > 0)
      data_ = static_cast<value_type*>(memory.data()) + first + detail::linear(offset, memory_range);
  }

  /// The first element of the buffer, even where the accessor's box starts later.
  value_type* buffer_data() const {
    return data_ == nullptr ? nullptr : data_ - detail::linear(offset_, memory_range_);
  }

  value_type* data_ = nullptr; // first element of the box
  buffer_state* memory_ = nullptr;
  range<Dimensions> memory_range_;
  range<Dimensions> range_;
  id<Dimensions> offset_;

 private:
  template <class Iterator>
  Iterator iterate(std::size_t position) const noexcept {
    if constexpr (Dimensions == 1)
      return data_ + position;
    else
      return Iterator(data_, memory_range_, range_, position);
  }
};

template <class T>
inline constexpr access_mode default_mode = std::is_const_v<T> ? access_mode::read : access_mode::read_write;

/// The mode and target that a tag or no tag stands for.
template <class Tag>
struct tag_traits;
template <access_mode Mode>
struct tag_traits<mode_tag_t<Mode>> {
  static constexpr access_mode mode = Mode;
  static constexpr target where = target::device;
};
template <access_mode Mode, target Target>
struct tag_traits<mode_target_tag_t<Mode, Target>> {
  static constexpr access_mode mode = Mode;
  static constexpr target where = Target;
};

/// Whether an argument after the box is a property list, a property, or the tag of this mode and target.
template <access_mode Mode, target Target, class Tag>
inline constexpr bool fits = std::is_same_v<Tag, property_list> || is_property_v<Tag>;
template <access_mode Mode, target Target>
inline constexpr bool fits<Mode, Target, mode_tag_t<Mode>> = true;
template <access_mode Mode, target Target>
inline constexpr bool fits<Mode, Target, mode_target_tag_t<Mode, Target>> = true;

} // namespace detail

template <class T, int Dimensions = 1, access_mode Mode = detail::default_mode<T>,
          target Target = target::device, access::placeholder IsPlaceholder = access::placeholder::false_t>
class accessor : public detail::element_access<std::remove_const_t<T>, Dimensions, Mode> {
  static_assert(!std::is_const_v<T> || Mode == access_mode::read, "constant elements can only be read");
  using base = detail::element_access<std::remove_const_t<T>, Dimensions, Mode>;
  using plain = std::remove_const_t<T>;

 public:
  using typename base::value_type;
  template <access::decorated IsDecorated>
  using accessor_ptr = multi_ptr<value_type, access::address_space::global_space, IsDecorated>;

  accessor() = default;

  template <class U, class A, class... Tags,
            class = std::enable_if_t<std::is_same_v<std::remove_const_t<U>, plain>>>
  accessor(buffer<U, Dimensions, A>& from, handler& commands, const Tags&... tags)
      : accessor(from, &commands, from.get_range(), id<Dimensions>(), tags...) {}
  template <class U, class A, class... Tags,
            class = std::enable_if_t<std::is_same_v<std::remove_const_t<U>, plain>>>
  accessor(buffer<U, Dimensions, A>& from, handler& commands, range<Dimensions> box, const Tags&... tags)
      : accessor(from, &commands, box, id<Dimensions>(), tags...) {}
  template <class U, class A, class... Tags,
            class = std::enable_if_t<std::is_same_v<std::remove_const_t<U>, plain>>>
  accessor(buffer<U, Dimensions, A>& from, handler& commands, range<Dimensions> box, id<Dimensions> offset,
           const Tags&... tags)
      : accessor(from, &commands, box, offset, tags...) {}

  /// Placeholders: the request is made later, with handler::require.
  template <class U, class A, class... Tags,
            class = std::enable_if_t<std::is_same_v<std::remove_const_t<U>, plain>>>
  accessor(buffer<U, Dimensions, A>& from, const Tags&... tags)
      : accessor(from, no_handler, from.get_range(), id<Dimensions>(), tags...) {}
  template <class U, class A, class... Tags,
            class = std::enable_if_t<std::is_same_v<std::remove_const_t<U>, plain>>>
  accessor(buffer<U, Dimensions, A>& from, range<Dimensions> box, const Tags&... tags)
      : accessor(from, no_handler, box, id<Dimensions>(), tags...) {}
  template <class U, class A, class... Tags,
            class = std::enable_if_t<std::is_same_v<std::remove_const_t<U>, plain>>>
  accessor(buffer<U, Dimensions, A>& from, range<Dimensions> box, id<Dimensions> offset, const Tags&... tags)
      : accessor(from, no_handler, box, offset, tags...) {}

  /// A reading accessor of the same request.
  template <access_mode M = Mode, std::enable_if_t<M != access_mode::read, int> = 0>
  operator accessor<const plain, Dimensions, access_mode::read, Target, IsPlaceholder>() const {
    accessor<const plain, Dimensions, access_mode::read, Target, IsPlaceholder> other;
    other.data_ = this->data_;
    other.memory_ = this->memory_;
    other.memory_range_ = this->memory_range_;
    other.range_ = this->range_;
    other.offset_ = this->offset_;
    other.placeholder_ = placeholder_;
    return other;
  }

  bool is_placeholder() const noexcept { return placeholder_; }
  void swap(accessor& other) { std::swap(*this, other); }

  template <access::decorated IsDecorated>
  accessor_ptr<IsDecorated> get_multi_ptr() const noexcept {
    return accessor_ptr<IsDecorated>(this->buffer_data());
  }
  std::add_pointer_t<value_type> get_pointer() const noexcept { return this->buffer_data(); }

 private:
  template <class, int, access_mode, target, access::placeholder>
  friend class accessor;
  friend class handler;
  friend struct std::hash<accessor>;

  template <class U, class A, class... Tags>
  accessor(buffer<U, Dimensions, A>& from, handler* commands, const range<Dimensions>& box,
           const id<Dimensions>& offset, const Tags&...)
      : base(from.memory(), from.first_, from.get_range(), box, offset), placeholder_(commands == nullptr) {
    static_assert((detail::fits<Mode, Target, Tags> && ...),
                  "a tag of another mode or target, or an argument that accessors do not take");
    if (commands != nullptr)
      detail::request(*commands, from.memory(), Mode);
  }

  static constexpr handler* no_handler = nullptr;

  bool placeholder_ = false;
};

namespace detail {
template <class T>
inline constexpr bool is_accessor = false;
template <class T, int Dimensions, access_mode Mode, target Target, access::placeholder P>
inline constexpr bool is_accessor<accessor<T, Dimensions, Mode, Target, P>> = true;
} // namespace detail

template <class T, int D, class A>
accessor(buffer<T, D, A>&, handler&) -> accessor<T, D, detail::default_mode<T>, target::device>;
template <class T, int D, class A>
accessor(buffer<T, D, A>&, handler&, const property_list&)
    -> accessor<T, D, detail::default_mode<T>, target::device>;
template <class T, int D, class A>
accessor(buffer<T, D, A>&, handler&, range<D>, const property_list& = {})
    -> accessor<T, D, detail::default_mode<T>, target::device>;
template <class T, int D, class A>
accessor(buffer<T, D, A>&, handler&, range<D>, id<D>, const property_list& = {})
    -> accessor<T, D, detail::default_mode<T>, target::device>;
template <class T, int D, class A, class Tag, class = decltype(detail::tag_traits<Tag>::mode)>
accessor(buffer<T, D, A>&, handler&, Tag, const property_list& = {})
    -> accessor<T, D, detail::tag_traits<Tag>::mode, detail::tag_traits<Tag>::where>;
template <class T, int D, class A, class Tag, class = decltype(detail::tag_traits<Tag>::mode)>
accessor(buffer<T, D, A>&, handler&, range<D>, Tag, const property_list& = {})
    -> accessor<T, D, detail::tag_traits<Tag>::mode, detail::tag_traits<Tag>::where>;
template <class T, int D, class A, class Tag, class = decltype(detail::tag_traits<Tag>::mode)>
accessor(buffer<T, D, A>&, handler&, range<D>, id<D>, Tag, const property_list& = {})
    -> accessor<T, D, detail::tag_traits<Tag>::mode, detail::tag_traits<Tag>::where>;
template <class T, int D, class A>
accessor(buffer<T, D, A>&) -> accessor<T, D, detail::default_mode<T>, target::device>;
template <class T, int D, class A, class Tag, class = decltype(detail::tag_traits<Tag>::mode)>
accessor(buffer<T, D, A>&, Tag, const property_list& = {})
    -> accessor<T, D, detail::tag_traits<Tag>::mode, detail::tag_traits<Tag>::where>;
template <class T, int D, class A, class Tag, class = decltype(detail::tag_traits<Tag>::mode)>
accessor(buffer<T, D, A>&, range<D>, Tag, const property_list& = {})
    -> accessor<T, D, detail::tag_traits<Tag>::mode, detail::tag_traits<Tag>::where>;
template <class T, int D, class A, class Tag, class = decltype(detail::tag_traits<Tag>::mode)>
accessor(buffer<T, D, A>&, range<D>, id<D>, Tag, const property_list& = {})
    -> accessor<T, D, detail::tag_traits<Tag>::mode, detail::tag_traits<Tag>::where>;

template <class T, int Dimensions, class AllocatorT>
template <access_mode Mode, target Target>
auto buffer<T, Dimensions, AllocatorT>::get_access(handler& commands) {
  return accessor<T, Dimensions, Mode, Target>(*this, commands);
}
template <class T, int Dimensions, class AllocatorT>
template <access_mode Mode, target Target>
auto buffer<T, Dimensions, AllocatorT>::get_access(handler& commands, range<Dimensions> extent,
                                                   id<Dimensions> offset) {
  return accessor<T, Dimensions, Mode, Target>(*this, commands, extent, offset);
}
template <class T, int Dimensions, class AllocatorT>
template <class... Args>
auto buffer<T, Dimensions, AllocatorT>::get_access(handler& commands, Args... args) {
  return accessor(*this, commands, args...);
}

} // namespace sycl

template <class T, int Dimensions, sycl::access_mode Mode, sycl::target Target, sycl::access::placeholder P>
struct std::hash<sycl::accessor<T, Dimensions, Mode, Target, P>> {
  std::size_t operator()(const sycl::accessor<T, Dimensions, Mode, Target, P>& a) const noexcept {
    return std::hash<const void*>{}(a.memory_) ^ std::hash<const void*>{}(a.data_);
  }
};
