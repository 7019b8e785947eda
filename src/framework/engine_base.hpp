#pragma once

#include <utility>

#include "framework/engine_impl.hpp"

/// The members of `engine_base`, instantiated once per engine in its source file.
namespace kestro::hvl::rng::detail {

template <class Engine>
engine_base<Engine>::engine_base(sycl::queue queue, std::unique_ptr<engine_base_impl<Engine>> impl)
    : queue_(std::move(queue)), impl_(std::move(impl)) {}

template <class Engine>
engine_base<Engine>::engine_base(const engine_base& other) : queue_(other.queue_) {
  if (other.impl_)
    impl_ = make_engine_impl<Engine>(queue_, other.impl_.get());
}

template <class Engine>
engine_base<Engine>::engine_base(engine_base&& other) noexcept
    : queue_(other.queue_), impl_(std::move(other.impl_)) {}

template <class Engine>
engine_base<Engine>& engine_base<Engine>::operator=(const engine_base& other) {
  if (this == &other)
    return *this;
  // On a device without a backend the old implementation stays, unlike in copy construction, which throws.
  const sycl::device device = other.queue_.get_device();
  if (device.is_cpu() || device.is_gpu())
    *this = engine_base(other);
  else
    queue_ = other.queue_;
  return *this;
}

template <class Engine>
engine_base<Engine>& engine_base<Engine>::operator=(engine_base&& other) noexcept {
  queue_ = other.queue_;
  impl_ = std::move(other.impl_);
  return *this;
}

template <class Engine>
engine_base<Engine>::~engine_base() = default;

} // namespace kestro::hvl::rng::detail
