// Memory that the program and the device share.
#pragma once

#include "failure.hpp"

#include <fmt/format.h>
#include <sycl/sycl.hpp>

#include <cstddef>

namespace hvl_rng {

class usm_memory {
 public:
  usm_memory(std::size_t bytes, const sycl::queue& queue)
      : queue_(queue), memory_(sycl::malloc_shared(bytes, queue)) {
    if (memory_ == nullptr)
      throw failure(exit_status::device, fmt::format("--device: {} bytes of memory cannot be had", bytes));
  }
  ~usm_memory() { sycl::free(memory_, queue_); }
  usm_memory(const usm_memory&) = delete;
  usm_memory& operator=(const usm_memory&) = delete;

  void* get() const { return memory_; }

 private:
  sycl::queue queue_;
  void* memory_;
};

} // namespace hvl_rng
