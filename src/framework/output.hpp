#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <type_traits>
#include <vector>

#include <kestro/hvl/exceptions.hpp>
#include <sycl/sycl.hpp>

#include "service/portability.hpp"

/// Where a generation writes, in its two forms. `on_device`, `in_place` and `on_host` are called inside the command
/// group: they declare its dependencies and return what kernels and host tasks index. A kernel may write elements of
/// another type of the same size, as one kernel makes `int` and `unsigned int`.
namespace kestro::hvl::rng::detail {

template <class T>
struct usm_output {
  using value_type = T;

  T* r;
  const std::vector<sycl::event>& dependencies;

  template <class Element>
  Element* on_device(sycl::handler& handler, std::int64_t n) const {
    return reinterpret_cast<Element*>(on_host(handler, n));
  }
  T* on_host(sycl::handler& handler, std::int64_t) const {
    handler.depends_on(dependencies);
    return r;
  }
  /// What the work behind `made` has written, to be read and changed.
  template <class Element>
  Element* in_place(sycl::handler& handler, const sycl::event& made) const {
    handler.depends_on(made);
    return reinterpret_cast<Element*>(r);
  }

  /// Of the host's memory; the last thing that a command group declares.
  void copy_from(sycl::handler& handler, const std::shared_ptr<T[]>& values, std::int64_t n) const {
    handler.memcpy(on_host(handler, n), values.get(), static_cast<std::size_t>(n) * sizeof(T));
  }

  void validate(std::int64_t n) const {
    if (n < 0)
      throw invalid_argument("rng", "generate", "n");
    if (r == nullptr)
      throw invalid_argument("rng", "generate", "r");
  }
};

template <class T>
struct buffer_output {
  using value_type = T;

  sycl::buffer<T, 1>& r;

  template <class Element>
  auto on_device(sycl::handler& handler, std::int64_t n) const {
    using accessor = sycl::accessor<Element, 1, sycl::access_mode::write, sycl::target::device>;
    return of_elements<Element>([&](auto& elements) { return accessor(elements, handler, properties(n)); });
  }
  template <class Element>
  auto in_place(sycl::handler& handler, const sycl::event&) const {
    using accessor = sycl::accessor<Element, 1, sycl::access_mode::read_write, sycl::target::device>;
    return of_elements<Element>([&](auto& elements) { return accessor(elements, handler); });
  }
  auto on_host(sycl::handler& handler, std::int64_t n) const {
    return portability::task_output<T>(r, handler, properties(n));
  }
  void copy_from(sycl::handler& handler, const std::shared_ptr<T[]>& values, std::int64_t n) const {
    using accessor = sycl::accessor<T, 1, sycl::access_mode::write, sycl::target::device>;
    handler.copy(values.get(),
                 accessor(r, handler, sycl::range<1>(static_cast<std::size_t>(n)), properties(n)));
  }

  void validate(std::int64_t n) const {
    if (n < 0 || static_cast<std::uint64_t>(n) > r.size())
      throw invalid_argument("rng", "generate", "n");
  }

 private:
  template <class Element, class Access>
  auto of_elements(const Access& access) const {
    if constexpr (std::is_same_v<Element, T>) {
      return access(r);
    } else {
      auto elements = r.template reinterpret<Element, 1>(r.get_range());
      return access(elements);
    }
  }

  // Values behind the n-th are kept, so only a whole overwrite lets the old content go.
  sycl::property_list properties(std::int64_t n) const {
    if (static_cast<std::uint64_t>(n) == r.size())
      return {sycl::property::no_init{}};
    return {};
  }
};

} // namespace kestro::hvl::rng::detail
