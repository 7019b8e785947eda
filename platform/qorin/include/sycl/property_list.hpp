// Property lists, and the properties this runtime knows.
#pragma once

#include <sycl/exception.hpp>

#include <any>
#include <memory>
#include <type_traits>
#include <typeinfo>
#include <utility>
#include <vector>

namespace sycl {

template <class Property>
struct is_property : std::false_type {};
template <class Property, class Object>
struct is_property_of : std::false_type {};
template <class Property>
inline constexpr bool is_property_v = is_property<Property>::value;
template <class Property, class Object>
inline constexpr bool is_property_of_v = is_property_of<Property, Object>::value;

class property_list {
 public:
  template <class... Properties, class = std::enable_if_t<(is_property_v<Properties> && ...)>>
  property_list(Properties... properties) {
    if constexpr (sizeof...(properties) > 0)
      list_ = std::make_shared<const std::vector<std::any>>(std::vector<std::any>{std::any(properties)...});
  }

  template <class Property>
  bool has_property() const noexcept {
    return find<Property>() != nullptr;
  }
  /// Throws errc::invalid when the list has no such property.
  template <class Property>
  Property get_property() const {
    if (const Property* found = find<Property>())
      return *found;
    throw exception(make_error_code(errc::invalid), "the property list has no such property");
  }

 private:
  template <class Property>
  const Property* find() const noexcept {
    if (list_)
      for (const std::any& one : *list_)
        if (const Property* found = std::any_cast<Property>(&one))
          return found;
    return nullptr;
  }

  std::shared_ptr<const std::vector<std::any>> list_;
};

/// For a class with a member `properties()`: the two queries of the property interface.
template <class Derived>
class property_interface {
 public:
  template <class Property>
  bool has_property() const noexcept {
    return static_cast<const Derived*>(this)->properties().template has_property<Property>();
  }
  template <class Property>
  Property get_property() const {
    return static_cast<const Derived*>(this)->properties().template get_property<Property>();
  }
};

class queue;
template <class T, int Dimensions, class AllocatorT>
class buffer;

namespace property {

namespace queue {
/// Events of the queue tell when their command was submitted, started and ended.
struct enable_profiling {};
/// Commands take effect in the order of their submission.
struct in_order {};
} // namespace queue

namespace buffer {
/// Promised by this runtime anyway: memory given at construction is used directly.
struct use_host_ptr {};
} // namespace buffer

/// The write accessor gives no promise about the values it finds.
struct no_init {};

namespace reduction {
/// The reduction does not take the variable's old value into account.
struct initialize_to_identity {};
} // namespace reduction

} // namespace property

inline constexpr property::no_init no_init{};

template <>
struct is_property<property::queue::enable_profiling> : std::true_type {};
template <>
struct is_property<property::queue::in_order> : std::true_type {};
template <>
struct is_property<property::buffer::use_host_ptr> : std::true_type {};
template <>
struct is_property<property::no_init> : std::true_type {};
template <>
struct is_property<property::reduction::initialize_to_identity> : std::true_type {};
template <>
struct is_property_of<property::queue::enable_profiling, queue> : std::true_type {};
template <>
struct is_property_of<property::queue::in_order, queue> : std::true_type {};
template <class T, int Dimensions, class AllocatorT>
struct is_property_of<property::buffer::use_host_ptr, buffer<T, Dimensions, AllocatorT>> : std::true_type {};

} // namespace sycl
