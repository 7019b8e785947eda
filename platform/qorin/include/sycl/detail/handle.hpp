// Reference semantics, written once: a handle is a counted reference to shared state; copies are equal, compare
// by identity and hash alike. Every handle class of the runtime (queue, event, device, buffer, ...) derives from it.
#pragma once

#include <functional>
#include <memory>
#include <utility>

namespace sycl::detail {

template <class Derived, class State>
class handle {
 public:
  friend bool operator==(const Derived& a, const Derived& b) noexcept { return same(a, b); }
  friend bool operator!=(const Derived& a, const Derived& b) noexcept { return !same(a, b); }

 protected:
  handle() noexcept = default;
  explicit handle(std::shared_ptr<State> state) noexcept : state_(std::move(state)) {}

  std::shared_ptr<State> state_;

 private:
  friend struct handle_access;

  static bool same(const handle& a, const handle& b) noexcept { return a.state_ == b.state_; }
};

/// How the runtime's own code reaches the state behind a handle and makes a handle for a state.
struct handle_access {
  template <class Derived, class State>
  static const std::shared_ptr<State>& state(const handle<Derived, State>& h) noexcept {
    return h.state_;
  }
  template <class Handle, class State>
  static Handle make(std::shared_ptr<State> state) {
    return Handle(std::move(state));
  }
};

template <class Handle>
struct handle_hash {
  std::size_t operator()(const Handle& h) const noexcept {
    return std::hash<const void*>{}(handle_access::state(h).get());
  }
};

} // namespace sycl::detail
