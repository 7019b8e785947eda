// `accessor`: a command's request for a buffer and, inside the command, its way to the elements. Accessors are plain
// pointers with extents, cheap to copy and transparent to the compiler; the command keeps the buffer alive.
#pragma once

#include <sycl/detail/element_access.hpp>
#include <sycl/multi_ptr.hpp>

namespace sycl {

namespace detail {

/// Enters the request into the command group that `commands` records.
QORIN_EXPORT void request(handler& commands, buffer_state& memory, access_mode mode);

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

/// Whether an argument after the box is the property no_init, or a list that has it.
template <class Tag>
bool says_no_init(const Tag& tag) {
  if constexpr (std::is_same_v<Tag, property_list>)
    return tag.template has_property<property::no_init>();
  else
    return std::is_same_v<Tag, property::no_init>;
}

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
class accessor : public detail::element_access<std::remove_const_t<T>, detail::shape<Dimensions>, Mode>,
                 public detail::lone_element<accessor<T, Dimensions, Mode, Target, IsPlaceholder>, Dimensions,
                                             std::conditional_t<Mode == access_mode::read, const T, T>> {
  static_assert(!std::is_const_v<T> || Mode == access_mode::read, "constant elements can only be read");
  static constexpr int shape = detail::shape<Dimensions>;
  using base = detail::element_access<std::remove_const_t<T>, shape, Mode>;
  using plain = std::remove_const_t<T>;

 public:
  using typename base::value_type;
  template <access::decorated IsDecorated>
  using accessor_ptr = multi_ptr<value_type, access::address_space::global_space, IsDecorated>;

  accessor() = default;

  template <class U, class A, class... Tags,
            class = std::enable_if_t<std::is_same_v<std::remove_const_t<U>, plain>>>
  accessor(buffer<U, shape, A>& from, handler& commands, const Tags&... tags)
      : accessor(from, &commands, detail::whole<Dimensions>(from.get_range()), id<shape>(), tags...) {}
  template <class U, class A, class... Tags,
            class = std::enable_if_t<std::is_same_v<std::remove_const_t<U>, plain>>>
  accessor(buffer<U, shape, A>& from, handler& commands, range<shape> box, const Tags&... tags)
      : accessor(from, &commands, box, id<shape>(), tags...) {}
  template <class U, class A, class... Tags,
            class = std::enable_if_t<std::is_same_v<std::remove_const_t<U>, plain>>>
  accessor(buffer<U, shape, A>& from, handler& commands, range<shape> box, id<shape> offset,
           const Tags&... tags)
      : accessor(from, &commands, box, offset, tags...) {}

  /// Placeholders: the request is made later, with handler::require.
  template <class U, class A, class... Tags,
            class = std::enable_if_t<std::is_same_v<std::remove_const_t<U>, plain>>>
  accessor(buffer<U, shape, A>& from, const Tags&... tags)
      : accessor(from, no_handler, detail::whole<Dimensions>(from.get_range()), id<shape>(), tags...) {}
  template <class U, class A, class... Tags,
            class = std::enable_if_t<std::is_same_v<std::remove_const_t<U>, plain>>>
  accessor(buffer<U, shape, A>& from, range<shape> box, const Tags&... tags)
      : accessor(from, no_handler, box, id<shape>(), tags...) {}
  template <class U, class A, class... Tags,
            class = std::enable_if_t<std::is_same_v<std::remove_const_t<U>, plain>>>
  accessor(buffer<U, shape, A>& from, range<shape> box, id<shape> offset, const Tags&... tags)
      : accessor(from, no_handler, box, offset, tags...) {}

  /// A reading accessor of the same request.
  template <
      class U, access_mode M,
      class = std::enable_if_t<std::is_same_v<std::remove_const_t<U>, plain> && detail::reads_as<M, Mode>>>
  accessor(const accessor<U, Dimensions, M, Target, IsPlaceholder>& other)
      : base(other), placeholder_(other.placeholder_) {}

  /// Of 0 dimensions: the one element.
  template <int N = Dimensions, std::enable_if_t<N == 0, int> = 0>
  const accessor& operator=(const value_type& value) const {
    *this->begin() = value;
    return *this;
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

  template <class U, class A, class... Tags>
  accessor(buffer<U, shape, A>& from, handler* commands, const range<shape>& box, const id<shape>& offset,
           const Tags&... tags)
      : base(from.memory(), from.first_, from.get_range(), box, offset, (detail::says_no_init(tags) || ...)),
        placeholder_(commands == nullptr) {
    static_assert(Mode <= access_mode::read_write && Target < target::local,
                  "a mode or target that was deprecated");
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
template <class T, int D, class A>
accessor(buffer<T, D, A>&, range<D>, const property_list& = {})
    -> accessor<T, D, detail::default_mode<T>, target::device>;
template <class T, int D, class A>
accessor(buffer<T, D, A>&, range<D>, id<D>, const property_list& = {})
    -> accessor<T, D, detail::default_mode<T>, target::device>;
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
struct std::hash<sycl::accessor<T, Dimensions, Mode, Target, P>> : sycl::detail::element_hash {};
