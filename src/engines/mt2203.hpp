#pragma once

#include <cstdint>
#include <memory>

#include "engines/mt2203_states.hpp"
#include "engines/twister.hpp"

namespace kestro::hvl::rng::detail {

template <>
struct ring_traits<mt2203> : twister_ring<mt2203> {
  static int jump_polynomial(const recurrence& twister, std::uint64_t distance, std::uint32_t* coefficients);
};

/// An engine of several states keeps them beside its stream, which is then that of the first one's member.
template <>
struct engine_extension<mt2203> : ring_extension<mt2203> {
  void copy(const engine_extension& other) {
    if (other.several)
      several.reset(new mt2203_states(*other.several));
  }

  void check_saved() const {
    if (several)
      throw computation_error("rng", "save_state", " does not support multi-state mt2203");
  }

  std::unique_ptr<mt2203_states, retire> several;
};

/// With several states, the CPU device runs the same kernel as a GPU.
template <>
struct engine_generation<mt2203> : generation_on_ring<mt2203> {
  static constexpr bool has_substream_modes = true;

  static bool in_substreams(engine_base_impl<mt2203>& impl) { return impl.extension().several != nullptr; }

  template <class DistributionImpl, class Target>
  static sycl::event generate_impl_sub_seq(engine_base_impl<mt2203>& impl, sycl::queue& queue,
                                           const DistributionImpl& distribution, std::int64_t n,
                                           const Target& target) {
    return distribution.with_transform(queue, [&](const auto& transform) {
      return in_steps(queue, transform, n, target, [&](const auto& step) {
        return impl.extension().several->submit(queue, step, n, target);
      });
    });
  }
};

} // namespace kestro::hvl::rng::detail
