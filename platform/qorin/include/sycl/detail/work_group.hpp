// The work-group a thread runs, as kernels see it: a place where the items of a group, or of a sub-group, meet.
#pragma once

#include <sycl/detail/config.hpp>

namespace sycl::detail {

/// Items of one sub-group are consecutive in the linear order of the group.
inline constexpr std::size_t sub_group_size = 16;

/// Called once, by the last member to arrive, with what every member brought, in the order of the members.
using meeting_action = void (*)(void* const* brought, std::size_t members, const void* context);

/// Every item of a group runs on one thread. An item that has to wait at a meeting is suspended on a stack of its
/// own, and goes on when all members have come.
class QORIN_EXPORT work_group {
 public:
  work_group(const work_group&) = delete;
  work_group& operator=(const work_group&) = delete;

  void meet_group(std::size_t member, void* brought, meeting_action action, const void* context);
  void meet_sub_group(std::size_t sub_group, std::size_t member, void* brought, meeting_action action,
                      const void* context);

 protected:
  work_group() = default;
  ~work_group() = default;
};

/// Local memory of the group that this thread runs; null outside of kernels.
QORIN_EXPORT char* local_memory() noexcept;

} // namespace sycl::detail
