#pragma once

#include <algorithm>
#include <bit>

#include "framework/ring/kernels.hpp"
#include "service/verbose.hpp"

/// How a call on a ring is cut into segments that run side by side.
namespace kestro::hvl::rng::detail::gpu {

// A jump costs as much as some hundred thousand words; a segment is worth several of them.
inline constexpr int least_segment_power = 22;

// More segments than compute units, so that unequal speeds even out.
inline constexpr std::uint64_t segments_per_unit = 8;

inline ring_plan plan_segments(const sycl::device& device, std::uint64_t words, int most_lanes) {
  // Where local memory is ordinary memory, items of a group share nothing that a loop would not have.
  const bool has_lanes =
      device.get_info<sycl::info::device::local_mem_type>() == sycl::info::local_mem_type::local;
  const std::size_t lanes = has_lanes ? std::min(static_cast<std::size_t>(most_lanes),
                                                 device.get_info<sycl::info::device::max_work_group_size>())
                                      : 1;
  if (words < std::uint64_t{2} << least_segment_power)
    return {1, 0, lanes};
  const std::uint64_t most = segments_per_unit * device.get_info<sycl::info::device::max_compute_units>();
  const int power = std::max(least_segment_power, static_cast<int>(std::bit_width((words - 1) / most)));
  return {static_cast<std::size_t>((words - 1) >> power) + 1, power, lanes};
}

/// Computes the start states of the plan's segments by jumps from the ring, and returns them.
template <class Engine>
const std::uint32_t* start_segments(sycl::queue& queue, device_ring<Engine>& ring, const ring_plan& plan) {
  using recurrence = typename device_ring<Engine>::recurrence_type;
  std::uint32_t* const states = ring.segment_states(plan.segments);
  int power = plan.power;
  for (std::size_t distance = 1; distance < plan.segments; distance *= 2, ++power) {
    const std::uint32_t* const polynomial = ring.jump_polynomial(power);
    const std::size_t jumps = std::min(distance, plan.segments - distance);
    ring.set_last(queue.submit([&](sycl::handler& handler) {
      handler.depends_on(ring.last());
      const local_words memory(sycl::range<1>(ring_window<recurrence>::capacity), handler);
      handler.parallel_for(sycl::nd_range<1>(jumps * plan.lanes, plan.lanes),
                           ring_jump<recurrence>(ring.recurrence(), ring.place(), ring.ring(), states,
                                                 polynomial, distance, memory));
    }));
    hvl::gpu::verbose_register_event(ring.last());
  }
  return states;
}

} // namespace kestro::hvl::rng::detail::gpu
