#include "engines/mt19937_kernels.hpp"

#include <algorithm>
#include <bit>

#include "service/verbose.hpp"

namespace kestro::hvl::rng::detail::gpu {
namespace {

// A jump costs as much as some hundred thousand words; a segment is worth several of them.
constexpr int least_power = 22;

// More segments than compute units, so that unequal speeds even out.
constexpr std::uint64_t segments_per_unit = 8;

/// Work-group g makes the start state of segment distance + g from that of segment g. (H. Haramoto, M. Matsumoto,
/// P. L'Ecuyer, "A fast jump ahead algorithm for linear recurrences in a polynomial space", SETA 2008.)
class mt19937_jump {
 public:
  mt19937_jump(const std::uint32_t* ring, std::uint32_t* states, const std::uint32_t* polynomial,
               std::size_t distance, const mt_local_words& memory)
      : ring_(ring), states_(states), polynomial_(polynomial), distance_(distance), memory_(memory) {}

  void operator()(sycl::nd_item<1> item) const {
    mt19937_window window(item, memory_);
    const std::size_t from = item.get_group(0);
    std::uint32_t* const to = states_ + (distance_ + from) * mt_words;
    if (distance_ == 1) { // the first jump also takes the first segment's state from the ring
      window.load_ring(ring_);
      window.store(states_);
    } else {
      window.load(states_ + from * mt_words);
    }
    for (int j = window.lane(); j < mt_words; j += window.lanes())
      to[j] = 0;
    // Word j of the new state is the exclusive or of the words 1 + i + j over the set bits i of the polynomial.
    for (int word = 0; word < mt_words; ++word) {
      window.extend(32);
      for (std::uint32_t bits = polynomial_[word], i = 0; bits != 0; bits >>= 1, ++i)
        if (bits & 1)
          add(window.live() + 1 + i, to, window.lane(), window.lanes());
      window.advance(32);
    }
  }

 private:
  // Every item adds to the same words of `to` each time, so no barrier is needed between additions.
  static void add(const std::uint32_t* from, std::uint32_t* to, int lane, int lanes) {
    if (lanes == 1) {
      for (int j = 0; j < mt_words; ++j)
        to[j] ^= from[j];
    } else {
      for (int j = lane; j < mt_words; j += lanes)
        to[j] ^= from[j];
    }
  }

  const std::uint32_t* ring_;
  std::uint32_t* states_;
  const std::uint32_t* polynomial_;
  std::size_t distance_;
  mt_local_words memory_;
};

} // namespace

mt19937_plan mt19937_plan_for(const sycl::device& device, std::uint64_t words) {
  // Where local memory is ordinary memory, items of a group share nothing that a loop would not have.
  const bool has_lanes =
      device.get_info<sycl::info::device::local_mem_type>() == sycl::info::local_mem_type::local;
  const std::size_t lanes =
      has_lanes ? std::min<std::size_t>(mt_block, device.get_info<sycl::info::device::max_work_group_size>())
                : 1;
  if (words < std::uint64_t{2} << least_power)
    return {1, 0, lanes};
  const std::uint64_t most = segments_per_unit * device.get_info<sycl::info::device::max_compute_units>();
  const int power = std::max(least_power, static_cast<int>(std::bit_width((words - 1) / most)));
  return {static_cast<std::size_t>((words - 1) >> power) + 1, power, lanes};
}

const std::uint32_t* mt19937_start_segments(sycl::queue& queue, mt19937_device_state& state,
                                            const mt19937_plan& plan) {
  std::uint32_t* const states = state.segment_states(plan.segments);
  int power = plan.power;
  for (std::size_t distance = 1; distance < plan.segments; distance *= 2, ++power) {
    const std::uint32_t* const polynomial = state.jump_polynomial(power);
    const std::size_t jumps = std::min(distance, plan.segments - distance);
    state.set_last(queue.submit([&](sycl::handler& handler) {
      handler.depends_on(state.last());
      const mt_local_words memory(sycl::range<1>(mt19937_window::capacity), handler);
      handler.parallel_for(sycl::nd_range<1>(jumps * plan.lanes, plan.lanes),
                           mt19937_jump(state.ring(), states, polynomial, distance, memory));
    }));
    hvl::gpu::verbose_register_event(state.last());
  }
  return states;
}

} // namespace kestro::hvl::rng::detail::gpu
