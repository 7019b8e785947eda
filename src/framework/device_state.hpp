#pragma once

#include <utility>

#include <sycl/sycl.hpp>

namespace kestro::hvl::rng::detail {

/// State in device memory that work reads and writes, all of it in order.
class device_state {
 public:
  device_state() = default;
  device_state(const device_state&) = delete;
  device_state& operator=(const device_state&) = delete;
  virtual ~device_state() = default;

  /// The last work that uses the state.
  const sycl::event& last() const { return last_; }
  void set_last(sycl::event event) { last_ = std::move(event); }
  void wait() { last_.wait(); }

 private:
  friend struct retire;
  sycl::event last_;
  device_state* next_retired_ = nullptr;
};

/// Ends a state whose engine is gone, without waiting or submitting: while work still uses the state it is put aside, and
/// freed with a later one. What work uses when the process ends is never freed.
struct retire {
  void operator()(device_state* state) const noexcept;
};

} // namespace kestro::hvl::rng::detail
