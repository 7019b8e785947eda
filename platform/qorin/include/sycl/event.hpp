// `event`: one command, seen from outside.
#pragma once

#include <sycl/context.hpp>
#include <sycl/detail/last_use.hpp>

namespace sycl {

class QORIN_EXPORT event : public detail::handle<event, detail::command> {
 public:
  /// An event that is complete from the start.
  event() noexcept = default;
  event(const event&) = default;
  event(event&&) noexcept = default;
  event& operator=(const event&) = default;
  event& operator=(event&&) noexcept = default;
  ~event() { detail::note_use(); }

  backend get_backend() const noexcept;

  /// Returns when the command is complete; runs the command itself when no thread has started it.
  void wait();
  static void wait(const std::vector<event>& events);
  /// As wait; then hands the errors of the command's queue to its handler, and those of the queues whose commands it
  /// depended on to theirs.
  void wait_and_throw();
  static void wait_and_throw(const std::vector<event>& events);

  /// The commands this one still waits for directly.
  std::vector<event> get_wait_list();
  template <class Descriptor>
  typename Descriptor::return_type get_info() const;
  /// Nanoseconds of the device's clock; start and end wait for the command. Throws errc::invalid unless the
  /// queue was made with property::queue::enable_profiling.
  template <class Descriptor>
  typename Descriptor::return_type get_profiling_info() const;

 private:
  friend struct detail::handle_access;
  using handle::handle;
};

#define QORIN_INFO_DECLARE(descriptor, type)                                                                 \
  template <>                                                                                                \
  QORIN_EXPORT type event::get_info<info::event::descriptor>() const;
QORIN_INFO_EVENT(QORIN_INFO_DECLARE)
#undef QORIN_INFO_DECLARE
#define QORIN_INFO_DECLARE(descriptor, type)                                                                 \
  template <>                                                                                                \
  QORIN_EXPORT type event::get_profiling_info<info::event_profiling::descriptor>() const;
QORIN_INFO_EVENT_PROFILING(QORIN_INFO_DECLARE)
#undef QORIN_INFO_DECLARE

} // namespace sycl

template <>
struct std::hash<sycl::event> : sycl::detail::handle_hash<sycl::event> {};
