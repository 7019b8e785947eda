#pragma once

#include <cstdint>
#include <string>
#include <typeinfo>
#include <vector>

#include <sycl/sycl.hpp>

#include "service/verbose.hpp"

namespace kestro::hvl::gpu {

/// What a trace line says of a call besides its output.
struct call_description {
  const std::type_info& distribution;
  const std::type_info& engine;
  std::int64_t n;
};

/// One traced call: made before it, finished after it. A call that throws is never finished and prints
/// nothing.
class traced_call {
 public:
  traced_call(sycl::queue& queue, const call_description& call, const void* r,
              const std::vector<sycl::event>& dependencies);
  template <class T>
  traced_call(sycl::queue& queue, const call_description& call, const sycl::buffer<T, 1>& r);

  traced_call(const traced_call&) = delete;
  traced_call& operator=(const traced_call&) = delete;
  ~traced_call();

  /// Prints the line of a USM call and hands its event on.
  sycl::event finish(sycl::event event);
  /// Prints the line of a buffer call.
  template <class T>
  void finish(const sycl::event& event, const sycl::buffer<T, 1>& r);

 private:
  traced_call(sycl::queue& queue, std::string description);

  void print(const sycl::event& event);

  sycl::queue& queue_;
  std::string description_;
  double host_time_ = 0.0;
  bool is_timed_;
  bool is_open_ = true;
};

} // namespace kestro::hvl::gpu
