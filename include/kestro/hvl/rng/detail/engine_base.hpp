#pragma once

#include <memory>

#include <sycl/sycl.hpp>

#include "../../detail/export.hpp"

namespace kestro::hvl::rng::detail {

template <class Engine>
class engine_base_impl;

/// What every engine class has: the queue given at construction and the implementation object, which owns the
/// engine's state. A copy is deep and uses the source's queue; the two then advance independently. A
/// moved-from engine holds no state and can only be destroyed or assigned to.
template <class Engine>
class KESTRO_HVL_API engine_base {
 public:
  engine_base(const engine_base& other);
  engine_base(engine_base&& other) noexcept;
  engine_base& operator=(const engine_base& other);
  engine_base& operator=(engine_base&& other) noexcept;

 protected:
  engine_base(sycl::queue queue, std::unique_ptr<engine_base_impl<Engine>> impl);
  ~engine_base();

  sycl::queue queue_;
  std::unique_ptr<engine_base_impl<Engine>> impl_;

 private:
  friend struct engine_access;
};

} // namespace kestro::hvl::rng::detail
