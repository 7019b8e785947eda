#pragma once

#include <cstddef>
#include <cstdint>
#include <exception>
#include <numeric>
#include <utility>

#include <sycl/sycl.hpp>

// Interoperation is an extra of an implementation: its header is there or not.
#if __has_include(<sycl/backend/opencl.hpp>)
#include <sycl/backend/opencl.hpp>
#define KESTRO_HVL_HAS_OPENCL
#endif
#if __has_include(<sycl/backend/zerlin.hpp>)
#include <sycl/backend/zerlin.hpp>
#define KESTRO_HVL_HAS_ZERLIN
#endif
#if defined(__ACPP__) || defined(__ADAPTIVECPP__) || defined(__HIPSYCL__)
#define KESTRO_HVL_ON_ADAPTIVECPP
#endif

// Before a loop of few rounds over an array. A GPU keeps an array in registers only where every index is a constant; the
// embedded runtime's kernels are compiled for a CPU, which gains nothing.
#if defined(__clang__) && !defined(KESTRO_HVL_HAS_ZERLIN)
#define KESTRO_HVL_UNROLL _Pragma("unroll")
#else
#define KESTRO_HVL_UNROLL
#endif

/// What differs between SYCL implementations, in one place. Everything else is standard SYCL 2020.
namespace kestro::hvl::portability {

/// Where a host task finds the elements of a buffer that it writes.
#ifdef KESTRO_HVL_ON_ADAPTIVECPP
// An accessor that a custom operation holds is never told where its elements are; what knows is the buffer's data, once the
// requirement that the accessor stands for is met. Its device is the CPU, which has the host's memory.
template <class T>
class task_output {
 public:
  task_output(sycl::buffer<T, 1>& buffer, sycl::handler& handler, const sycl::property_list& properties)
      : data_(sycl::detail::extract_buffer_data_region(buffer)) {
    const sycl::accessor<T, 1, sycl::access_mode::write, sycl::target::device> requirement(buffer, handler,
                                                                                           properties);
  }
  T& operator[](std::size_t i) const {
    return static_cast<T*>(data_->get_memory(sycl::detail::get_host_device()))[i];
  }

 private:
  decltype(sycl::detail::extract_buffer_data_region(std::declval<sycl::buffer<T, 1>&>())) data_;
};
#else
template <class T>
using task_output = sycl::accessor<T, 1, sycl::access_mode::write, sycl::target::host_task>;
#endif

/// What the exception of a host task has become when it is handled.
#ifdef KESTRO_HVL_ON_ADAPTIVECPP
template <class Exception>
using task_error = sycl::exception;
#else
template <class Exception>
using task_error = Exception;
#endif

/// Has `task` run on the host when the command group's dependencies are met; what it throws reaches the asynchronous
/// handler, as a `task_error`. On a GPU device of AdaptiveCpp it runs when it is submitted, before them: there it may
/// neither read what other work writes nor end what other work uses.
template <class Task>
void host_task(sycl::handler& handler, Task&& task) {
#ifdef KESTRO_HVL_ON_ADAPTIVECPP
  handler.AdaptiveCpp_enqueue_custom_operation([task = std::forward<Task>(task)](auto&) {
    try {
      task();
    } catch (const std::exception& e) { // beyond here it would end the process
      hipsycl::rt::register_error(__acpp_here(), hipsycl::rt::error_info{e.what()});
    }
  });
#else
  handler.host_task(std::forward<Task>(task));
#endif
}

/// Stores value(0), ..., value(Count - 1). On a GPU in vectors of 16 or 8 bytes where they fill such and `to` is aligned for
/// it, which is the same for all work-items.
template <int Count, class T, class Value>
void store_values(T* to, const Value& value) {
#ifndef KESTRO_HVL_HAS_ZERLIN
  constexpr int bytes = std::gcd(16, Count * static_cast<int>(sizeof(T)));
  constexpr int lanes = bytes / static_cast<int>(sizeof(T));
  if constexpr (lanes > 1) {
    if (reinterpret_cast<std::uintptr_t>(to) % bytes == 0) {
      typedef T vector __attribute__((vector_size(bytes), may_alias));
      KESTRO_HVL_UNROLL
      for (int k = 0; k < Count; k += lanes) {
        vector v;
        KESTRO_HVL_UNROLL
        for (int j = 0; j < lanes; ++j)
          v[j] = value(k + j);
        *reinterpret_cast<vector*>(to + k) = v;
      }
      return;
    }
  }
#endif
  KESTRO_HVL_UNROLL
  for (int k = 0; k < Count; ++k)
    to[k] = value(k);
}

/// What the backends that the library interoperates with are called; the standard promises neither.
#ifdef KESTRO_HVL_HAS_OPENCL
inline constexpr sycl::backend opencl = sycl::backend::opencl;
#endif
#ifdef KESTRO_HVL_HAS_ZERLIN
inline constexpr sycl::backend zerlin = sycl::backend::zerlin;
#endif

} // namespace kestro::hvl::portability
