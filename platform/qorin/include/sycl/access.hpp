// Modes and targets of accessors, and the tags that let a constructor deduce them.
#pragma once

#include <sycl/property_list.hpp>

namespace sycl {

// Of the deprecated enumerators, constant_buffer stands for device; the others are names that no class takes.
enum class access_mode : int {
  read = 1024,
  write,
  read_write,
  discard_write [[deprecated]],
  discard_read_write [[deprecated]],
  atomic [[deprecated]]
};
enum class target : int {
  device = 2014,
  host_task,
  global_buffer [[deprecated]] = device,
  constant_buffer [[deprecated]] = host_task + 1,
  local, // deprecated
  host_buffer [[deprecated]]
};

namespace access {
using mode = access_mode;
using target = sycl::target;
enum class placeholder : int { false_t, true_t };
} // namespace access

template <access_mode Mode>
struct mode_tag_t {
  explicit mode_tag_t() = default;
};
template <access_mode Mode, target Target>
struct mode_target_tag_t {
  explicit mode_target_tag_t() = default;
};

inline constexpr mode_tag_t<access_mode::read> read_only{};
inline constexpr mode_tag_t<access_mode::write> write_only{};
inline constexpr mode_tag_t<access_mode::read_write> read_write{};
inline constexpr mode_target_tag_t<access_mode::read, target::host_task> read_only_host_task{};
inline constexpr mode_target_tag_t<access_mode::write, target::host_task> write_only_host_task{};
inline constexpr mode_target_tag_t<access_mode::read_write, target::host_task> read_write_host_task{};

} // namespace sycl
