#include "framework/device_state.hpp"

#include <mutex>

namespace kestro::hvl::rng::detail {
namespace {

// A list through the states themselves, as putting one aside must not fail. Without destructors, for engines of static
// duration come late.
constinit std::mutex retired_mutex;
constinit device_state* first_retired = nullptr;

bool is_complete(const sycl::event& event) noexcept {
  try {
    return event.get_info<sycl::info::event::command_execution_status>() ==
           sycl::info::event_command_status::complete;
  } catch (...) {
    return false;
  }
}

} // namespace

void retire::operator()(device_state* state) const noexcept {
  const std::lock_guard lock(retired_mutex);
  state->next_retired_ = first_retired;
  first_retired = state;
  for (device_state** at = &first_retired; *at != nullptr;) {
    device_state* const one = *at;
    if (is_complete(one->last_)) {
      *at = one->next_retired_;
      delete one;
    } else {
      at = &one->next_retired_;
    }
  }
}

} // namespace kestro::hvl::rng::detail
