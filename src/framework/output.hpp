#pragma once

#include <cstdint>
#include <vector>

#include <sycl/sycl.hpp>

#include "service/portability.hpp"

/// Where a generation writes, in its two forms. `on_device` and `on_host` are called inside the command
/// group: they declare its dependencies and return what kernels and host tasks index.
namespace kestro::hvl::rng::detail {

template <class T>
struct usm_output {
  T* r;
  const std::vector<sycl::event>& dependencies;

  T* on_device(sycl::handler& handler, std::int64_t) const {
    handler.depends_on(dependencies);
    return r;
  }
  T* on_host(sycl::handler& handler, std::int64_t n) const { return on_device(handler, n); }

  void validate(std::int64_t n) const {
    if (n < 0)
      throw invalid_argument("rng", "generate", "n");
    if (r == nullptr)
      throw invalid_argument("rng", "generate", "r");
  }
};

template <class T>
struct buffer_output {
  sycl::buffer<T, 1>& r;

  auto on_device(sycl::handler& handler, std::int64_t n) const {
    return sycl::accessor<T, 1, sycl::access_mode::write, sycl::target::device>(r, handler, properties(n));
  }
  auto on_host(sycl::handler& handler, std::int64_t n) const {
    return sycl::accessor<T, 1, sycl::access_mode::write, sycl::target::host_task>(r, handler, properties(n));
  }

  void validate(std::int64_t n) const {
    if (n < 0 || static_cast<std::uint64_t>(n) > r.size())
      throw invalid_argument("rng", "generate", "n");
  }

 private:
  // Values behind the n-th are kept, so only a whole overwrite lets the old content go.
  sycl::property_list properties(std::int64_t n) const {
    if (static_cast<std::uint64_t>(n) == r.size())
      return {sycl::property::no_init{}};
    return {};
  }
};

} // namespace kestro::hvl::rng::detail
