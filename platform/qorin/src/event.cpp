#include "objects.hpp"

namespace sycl {

backend event::get_backend() const noexcept {
  return state_ ? state_->kind() : backend::host;
}

void event::wait() {
  if (state_)
    state_->wait();
}
void event::wait(const std::vector<event>& events) {
  for (event e : events)
    e.wait();
}
void event::wait_and_throw() {
  wait();
  if (state_)
    state_->deliver_errors();
}
void event::wait_and_throw(const std::vector<event>& events) {
  wait(events);
  for (event e : events)
    e.wait_and_throw();
}

std::vector<event> event::get_wait_list() {
  std::vector<event> result;
  if (state_)
    for (auto& predecessor : state_->incomplete_predecessors())
      result.push_back(detail::handle_access::make<event>(std::move(predecessor)));
  return result;
}

template <>
info::event_command_status event::get_info<info::event::command_execution_status>() const {
  if (!state_ || state_->complete())
    return info::event_command_status::complete;
  return state_->current_phase() == detail::command::phase::running ? info::event_command_status::running
                                                                    : info::event_command_status::submitted;
}

namespace {

detail::command& profiled(const std::shared_ptr<detail::command>& command) {
  if (!command || !command->profiled())
    throw exception(make_error_code(errc::invalid),
                    "profiling: the event is not of a queue made with property::queue::enable_profiling");
  return *command;
}

} // namespace

template <>
std::uint64_t event::get_profiling_info<info::event_profiling::command_submit>() const {
  return profiled(state_).submit_time();
}
template <>
std::uint64_t event::get_profiling_info<info::event_profiling::command_start>() const {
  profiled(state_).wait();
  return state_->start_time();
}
template <>
std::uint64_t event::get_profiling_info<info::event_profiling::command_end>() const {
  profiled(state_).wait();
  return state_->end_time();
}

} // namespace sycl
