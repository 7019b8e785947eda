// Limits of work-groups, which the device queries report and launches keep.
#pragma once

#include <cstddef>

namespace sycl::detail {

inline constexpr std::size_t largest_work_group = 4096;
inline constexpr std::size_t local_memory_bytes = std::size_t{256} << 10;

} // namespace sycl::detail
