#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

#include <kestro/hvl/exceptions.hpp>
#include <sycl/sycl.hpp>

#include "framework/device_state.hpp"

namespace kestro::hvl::rng::detail {

/// Numbers in device memory that kernels read.
using device_numbers = std::shared_ptr<const double[]>;

/// Numbers that never change, copied to each device that asks for them when it first does. From any thread.
class device_copies {
 public:
  /// The copy that kernels of `queue` reach. Throws `device_bad_alloc`.
  device_numbers on(const sycl::queue& queue, const double* numbers, std::size_t count) {
    const std::lock_guard lock(mutex_);
    for (const copy& c : copies_)
      if (c.queue.get_context() == queue.get_context() && c.queue.get_device() == queue.get_device())
        return c.numbers;
    auto* const memory = sycl::malloc_shared<double>(count, queue);
    if (memory == nullptr)
      throw device_bad_alloc("rng", "generate", queue.get_device());
    const device_numbers owner(memory, release{queue});
    std::copy_n(numbers, count, memory);
    copies_.push_back({queue, owner});
    return owner;
  }

 private:
  struct release {
    sycl::queue queue;
    // A memory that cannot be freed is lost; its owner's destructor has nobody to tell.
    void operator()(double* memory) const noexcept {
      try {
        sycl::free(memory, queue);
      } catch (...) {
      }
    }
  };
  struct copy {
    sycl::queue queue;
    device_numbers numbers;
  };

  std::mutex mutex_;
  std::vector<copy> copies_;
};

/// Holds memory until the work that reads it is done.
class memory_in_use final : public device_state {
 public:
  explicit memory_in_use(std::shared_ptr<const void> memory) : memory_(std::move(memory)) {}

 private:
  std::shared_ptr<const void> memory_;
};

/// submit(), which returns the event of work that reads `memory`; nobody need wait for it.
template <class Submit>
sycl::event while_in_use(const std::shared_ptr<const void>& memory, const Submit& submit) {
  if (!memory)
    return submit();
  // built before anything is in flight; its end puts it aside
  const std::unique_ptr<memory_in_use, retire> use(new memory_in_use(memory));
  sycl::event event = submit();
  use->set_last(event);
  return event;
}

} // namespace kestro::hvl::rng::detail
