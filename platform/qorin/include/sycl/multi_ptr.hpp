// sycl::multi_ptr: a pointer that knows its address space.
#pragma once

#include <cstddef>
#include <iterator>
#include <type_traits>

#include <sycl/address_space.hpp>

namespace sycl {

namespace detail {

/// Spaces between which a multi_ptr converts without being asked: each to itself, all of them to the generic.
constexpr bool converts_implicitly(access::address_space from, access::address_space to) {
  return from == to || to == access::address_space::generic_space;
}

/// Spaces between which static_cast converts: also from the generic one back.
constexpr bool converts_explicitly(access::address_space from, access::address_space to) {
  return from == access::address_space::generic_space && !converts_implicitly(from, to);
}

template <typename From, typename To>
inline constexpr bool pointer_converts_v = std::is_convertible_v<From*, To*>;

/// What an accessor of any kind gives for its memory, where it gives a multi_ptr at all.
template <typename Accessor, access::decorated D>
using accessor_pointer = decltype(std::declval<const Accessor&>().template get_multi_ptr<D>());

/// What multi_ptr has for objects and for void alike; Self is the multi_ptr.
template <typename Self, typename T, access::address_space Space, access::decorated D>
class multi_ptr_base {
 public:
  static constexpr bool is_decorated = D == access::decorated::yes;
  static constexpr access::address_space address_space = Space;

  using value_type = T;
  using pointer = T*; // host pointers carry no decoration
  using difference_type = std::ptrdiff_t;

  constexpr multi_ptr_base() = default;
  constexpr multi_ptr_base(std::nullptr_t) {}
  explicit constexpr multi_ptr_base(pointer raw) : raw_(raw) {}

  constexpr pointer get() const { return raw_; }
  constexpr T* get_raw() const { return raw_; }
  constexpr pointer get_decorated() const { return raw_; }

#define QORIN_COMPARISON(op)                                                                                 \
  friend constexpr bool operator op(const Self& a, const Self& b) {                                          \
    return a.get_raw() op b.get_raw();                                                                       \
  }                                                                                                          \
  friend constexpr bool operator op(const Self& a, std::nullptr_t) {                                         \
    return a.get_raw() op pointer(nullptr);                                                                  \
  }                                                                                                          \
  friend constexpr bool operator op(std::nullptr_t, const Self& b) {                                         \
    return pointer(nullptr) op b.get_raw();                                                                  \
  }
  QORIN_COMPARISON(==)
  QORIN_COMPARISON(!=)
  QORIN_COMPARISON(<)
  QORIN_COMPARISON(>)
  QORIN_COMPARISON(<=)
  QORIN_COMPARISON(>=)
#undef QORIN_COMPARISON

 protected:
  pointer raw_ = nullptr;
};

} // namespace detail

template <typename ElementType, access::address_space Space, access::decorated DecorateAddress>
class multi_ptr : public detail::multi_ptr_base<multi_ptr<ElementType, Space, DecorateAddress>, ElementType,
                                                Space, DecorateAddress> {
  using base = detail::multi_ptr_base<multi_ptr, ElementType, Space, DecorateAddress>;
  using base::raw_;

 public:
  using typename base::pointer;
  using reference = std::add_lvalue_reference_t<ElementType>;
  using iterator_category = std::random_access_iterator_tag;

  using base::base;
  constexpr multi_ptr() = default;

  template <typename Other, access::address_space From, access::decorated D,
            std::enable_if_t<detail::pointer_converts_v<Other, ElementType> &&
                                 detail::converts_implicitly(From, Space),
                             int> = 0>
  constexpr multi_ptr(const multi_ptr<Other, From, D>& other) : base(other.get_raw()) {}

  template <typename Other, access::address_space From, access::decorated D,
            std::enable_if_t<detail::pointer_converts_v<Other, ElementType> &&
                                 detail::converts_explicitly(From, Space),
                             int> = 0>
  explicit constexpr multi_ptr(const multi_ptr<Other, From, D>& other) : base(other.get_raw()) {}

  template <
      typename Accessor,
      std::enable_if_t<std::is_convertible_v<detail::accessor_pointer<Accessor, DecorateAddress>, multi_ptr>,
                       int> = 0>
  multi_ptr(const Accessor& accessor)
      : multi_ptr(multi_ptr(accessor.template get_multi_ptr<DecorateAddress>())) {}

  /// From a pointer to void of the same space.
  template <typename Void, access::decorated D,
            std::enable_if_t<std::is_void_v<Void> && (std::is_const_v<ElementType> || !std::is_const_v<Void>),
                             int> = 0>
  explicit constexpr multi_ptr(const multi_ptr<Void, Space, D>& other)
      : base(static_cast<ElementType*>(other.get_raw())) {}

  constexpr reference operator*() const { return *raw_; }
  constexpr pointer operator->() const { return raw_; }
  constexpr reference operator[](std::ptrdiff_t index) const { return raw_[index]; }

  constexpr multi_ptr& operator+=(std::ptrdiff_t distance) {
    raw_ += distance;
    return *this;
  }
  constexpr multi_ptr& operator-=(std::ptrdiff_t distance) { return *this += -distance; }
  constexpr multi_ptr& operator++() { return *this += 1; }
  constexpr multi_ptr& operator--() { return *this -= 1; }
  constexpr multi_ptr operator++(int) {
    const multi_ptr before = *this;
    ++*this;
    return before;
  }
  constexpr multi_ptr operator--(int) {
    const multi_ptr before = *this;
    --*this;
    return before;
  }
  friend constexpr multi_ptr operator+(multi_ptr a, std::ptrdiff_t distance) { return a += distance; }
  friend constexpr multi_ptr operator+(std::ptrdiff_t distance, multi_ptr a) { return a += distance; }
  friend constexpr multi_ptr operator-(multi_ptr a, std::ptrdiff_t distance) { return a -= distance; }
  friend constexpr std::ptrdiff_t operator-(multi_ptr a, multi_ptr b) { return a.raw_ - b.raw_; }

  /// Brings count elements nearer; for global memory only.
  void prefetch(std::size_t count) const {
    static_assert(Space == access::address_space::global_space, "prefetch is for the global address space");
    constexpr std::size_t line = 64;
    for (std::size_t at = 0; at < count * sizeof(ElementType); at += line)
      __builtin_prefetch(reinterpret_cast<const char*>(raw_) + at);
  }
};

template <access::address_space Space, access::decorated DecorateAddress>
class multi_ptr<void, Space, DecorateAddress>
    : public detail::multi_ptr_base<multi_ptr<void, Space, DecorateAddress>, void, Space, DecorateAddress> {
  using base = detail::multi_ptr_base<multi_ptr, void, Space, DecorateAddress>;

 public:
  using base::base;
  constexpr multi_ptr() = default;
  template <typename Other, access::address_space From, access::decorated D,
            std::enable_if_t<!std::is_const_v<Other> && detail::converts_implicitly(From, Space), int> = 0>
  constexpr multi_ptr(const multi_ptr<Other, From, D>& other) : base(other.get_raw()) {}
};

template <access::address_space Space, access::decorated DecorateAddress>
class multi_ptr<const void, Space, DecorateAddress>
    : public detail::multi_ptr_base<multi_ptr<const void, Space, DecorateAddress>, const void, Space,
                                    DecorateAddress> {
  using base = detail::multi_ptr_base<multi_ptr, const void, Space, DecorateAddress>;

 public:
  using base::base;
  constexpr multi_ptr() = default;
  template <typename Other, access::address_space From, access::decorated D,
            std::enable_if_t<detail::converts_implicitly(From, Space), int> = 0>
  constexpr multi_ptr(const multi_ptr<Other, From, D>& other) : base(other.get_raw()) {}
};

/// A plain pointer whose address the caller knows to be in Space.
template <access::address_space Space, access::decorated DecorateAddress, typename ElementType>
constexpr multi_ptr<ElementType, Space, DecorateAddress> address_space_cast(ElementType* pointer) {
  return multi_ptr<ElementType, Space, DecorateAddress>(pointer);
}

// Where the standard's default is the deprecated kind, it is `no` here.
#define QORIN_POINTER_ALIASES(name, space)                                                                   \
  template <typename ElementType, access::decorated IsDecorated = access::decorated::no>                     \
  using name = multi_ptr<ElementType, access::address_space::space, IsDecorated>;                            \
  template <typename ElementType>                                                                            \
  using raw_##name = multi_ptr<ElementType, access::address_space::space, access::decorated::no>;            \
  template <typename ElementType>                                                                            \
  using decorated_##name = multi_ptr<ElementType, access::address_space::space, access::decorated::yes>;
QORIN_POINTER_ALIASES(global_ptr, global_space)
QORIN_POINTER_ALIASES(local_ptr, local_space)
QORIN_POINTER_ALIASES(private_ptr, private_space)
QORIN_POINTER_ALIASES(generic_ptr, generic_space)
#undef QORIN_POINTER_ALIASES

} // namespace sycl
