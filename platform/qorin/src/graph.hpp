// The order that buffers imply: who wrote a buffer last and who has read it since.
#pragma once

#include "command.hpp"

#include <sycl/detail/buffer_state.hpp>

#include <deque>
#include <mutex>
#include <vector>

namespace sycl::detail {

/// One mutex for the users of all buffers: a command that uses several enters them at one moment, so that two
/// submissions never wait for each other.
std::mutex& graph_mutex();

/// Guarded by graph_mutex().
struct buffer_users {
  std::shared_ptr<command> writer;
  std::deque<std::shared_ptr<command>> readers; // since the writer

  /// Makes `c` wait for the commands its access conflicts with, and later ones for `c`.
  void enter(const std::shared_ptr<command>& c, access_mode mode);
  std::vector<std::shared_ptr<command>> all() const;

 private:
  void forget_complete_readers();

  std::size_t crowded_ = 16; // so many readers are worth looking through
};

} // namespace sycl::detail
