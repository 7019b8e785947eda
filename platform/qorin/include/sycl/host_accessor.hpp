// `host_accessor`: the host's own use of a buffer. Construction waits until the elements are there to be used;
// commands that conflict wait until the accessor and its copies are gone.
#pragma once

#include <sycl/accessor.hpp>

namespace sycl {

namespace detail {
/// Waits for the commands that conflict and holds back later ones while the result lives.
QORIN_EXPORT std::shared_ptr<void> hold_for_host(buffer_state& memory, access_mode mode);
} // namespace detail

template <class T, int Dimensions = 1, access_mode Mode = detail::default_mode<T>>
class host_accessor : public detail::element_access<std::remove_const_t<T>, detail::shape<Dimensions>, Mode>,
                      public detail::lone_element<host_accessor<T, Dimensions, Mode>, Dimensions,
                                                  std::conditional_t<Mode == access_mode::read, const T, T>> {
  static constexpr int shape = detail::shape<Dimensions>;
  using base = detail::element_access<std::remove_const_t<T>, shape, Mode>;
  using plain = std::remove_const_t<T>;

 public:
  using typename base::value_type;

  host_accessor() = default;
  template <class U, class A, class... Tags,
            class = std::enable_if_t<std::is_same_v<std::remove_const_t<U>, plain>>>
  host_accessor(buffer<U, shape, A>& from, const Tags&... tags)
      : host_accessor(from, detail::whole<Dimensions>(from.get_range()), id<shape>(), tags...) {}
  template <class U, class A, class... Tags,
            class = std::enable_if_t<std::is_same_v<std::remove_const_t<U>, plain>>>
  host_accessor(buffer<U, shape, A>& from, range<shape> box, const Tags&... tags)
      : host_accessor(from, box, id<shape>(), tags...) {}
  template <class U, class A, class... Tags,
            class = std::enable_if_t<std::is_same_v<std::remove_const_t<U>, plain>>>
  host_accessor(buffer<U, shape, A>& from, range<shape> box, id<shape> offset, const Tags&... tags)
      : base(from.memory(), from.first_, from.get_range(), box, offset, (detail::says_no_init(tags) || ...)),
        hold_(detail::hold_for_host(from.memory(), Mode)) {
    static_assert((detail::fits<Mode, target::device, Tags> && ...),
                  "a tag of another mode, or an argument that host accessors do not take");
  }

  /// A reading accessor of the same request.
  template <
      class U, access_mode M,
      class = std::enable_if_t<std::is_same_v<std::remove_const_t<U>, plain> && detail::reads_as<M, Mode>>>
  host_accessor(const host_accessor<U, Dimensions, M>& other) : base(other), hold_(other.hold_) {}

  /// Of 0 dimensions: the one element.
  template <int N = Dimensions, std::enable_if_t<N == 0, int> = 0>
  const host_accessor& operator=(const value_type& value) const {
    *this->begin() = value;
    return *this;
  }

  std::add_pointer_t<value_type> get_pointer() const noexcept { return this->buffer_data(); }
  void swap(host_accessor& other) { std::swap(*this, other); }

 private:
  template <class, int, access_mode>
  friend class host_accessor;

  std::shared_ptr<void> hold_;
};

template <class T, int D, class A>
host_accessor(buffer<T, D, A>&, const property_list& = {}) -> host_accessor<T, D, detail::default_mode<T>>;
template <class T, int D, class A>
host_accessor(buffer<T, D, A>&, range<D>, const property_list& = {})
    -> host_accessor<T, D, detail::default_mode<T>>;
template <class T, int D, class A>
host_accessor(buffer<T, D, A>&, range<D>, id<D>, const property_list& = {})
    -> host_accessor<T, D, detail::default_mode<T>>;
template <class T, int D, class A, access_mode Mode>
host_accessor(buffer<T, D, A>&, mode_tag_t<Mode>, const property_list& = {}) -> host_accessor<T, D, Mode>;
template <class T, int D, class A, access_mode Mode>
host_accessor(buffer<T, D, A>&, range<D>, mode_tag_t<Mode>, const property_list& = {})
    -> host_accessor<T, D, Mode>;
template <class T, int D, class A, access_mode Mode>
host_accessor(buffer<T, D, A>&, range<D>, id<D>, mode_tag_t<Mode>, const property_list& = {})
    -> host_accessor<T, D, Mode>;

template <class T, int Dimensions, class AllocatorT>
template <class... Args>
auto buffer<T, Dimensions, AllocatorT>::get_host_access(Args... args) {
  return host_accessor(*this, args...);
}
template <class T, int Dimensions, class AllocatorT>
template <access_mode Mode>
auto buffer<T, Dimensions, AllocatorT>::get_access() {
  return host_accessor<T, Dimensions, Mode>(*this);
}
template <class T, int Dimensions, class AllocatorT>
template <access_mode Mode>
auto buffer<T, Dimensions, AllocatorT>::get_access(range<Dimensions> extent, id<Dimensions> offset) {
  return host_accessor<T, Dimensions, Mode>(*this, extent, offset);
}

} // namespace sycl

template <class T, int Dimensions, sycl::access_mode Mode>
struct std::hash<sycl::host_accessor<T, Dimensions, Mode>> : sycl::detail::element_hash {};
