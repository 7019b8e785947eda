// Specialization constants: values that a command group gives its kernel, which reads them through a `kernel_handler`.
#pragma once

#include <sycl/detail/config.hpp>

#include <any>
#include <memory>
#include <type_traits>
#include <utility>
#include <vector>

namespace sycl {

namespace detail {

/// The values that were set in one command group, by the addresses of their ids.
using specialization_values = std::vector<std::pair<const void*, std::any>>;

struct specialization_access {
  template <class Id>
  static const typename Id::value_type& value(const specialization_values* values, const Id& id) {
    if (values != nullptr)
      for (const auto& [of, value] : *values)
        if (of == &id)
          return *std::any_cast<typename Id::value_type>(&value);
    return id.default_;
  }
};

template <auto& Id>
using specialization_type = typename std::remove_reference_t<decltype(Id)>::value_type;

} // namespace detail

/// Names a constant by where this object is; its value is the default.
template <class T>
class specialization_id {
 public:
  using value_type = T;

  template <class... Args, class = std::enable_if_t<std::is_constructible_v<T, Args...>>>
  explicit constexpr specialization_id(Args&&... args) : default_(std::forward<Args>(args)...) {}
  specialization_id(const specialization_id&) = delete;
  specialization_id& operator=(const specialization_id&) = delete;

 private:
  friend struct detail::specialization_access;
  T default_;
};

/// What a kernel that takes one behind its item asks for the constants of its command group.
class kernel_handler {
 public:
  template <auto& Id>
  detail::specialization_type<Id> get_specialization_constant() const {
    return detail::specialization_access::value(values_.get(), Id);
  }

 private:
  friend class handler;
  explicit kernel_handler(std::shared_ptr<const detail::specialization_values> values)
      : values_(std::move(values)) {}
  std::shared_ptr<const detail::specialization_values> values_;
};

} // namespace sycl
