#pragma once

#include <cstdint>

#include <kestro/hvl/rng/engines.hpp>

#include "engines/mt19937_kernels.hpp"
#include "framework/generation.hpp"

/// mt19937. On a GPU device its state lives in device memory.
namespace kestro::hvl::rng::detail {

template <>
struct engine_traits<mt19937> {
  static constexpr const char* name = "mt19937";
  static constexpr std::int32_t identifier = VQS_ENGINE_MT19937;
  static constexpr bool has_uniform_bits = true;
};

template <>
struct engine_kernel<mt19937> {
  using word_type = std::uint32_t;
  static constexpr word_scale scale = word_scale::signed32;
  static constexpr std::uint32_t raw(word_type word) { return word; }
};

/// The GPU backend's device state, which stands for the stream; the stream is brought up to date when asked for.
template <>
struct engine_extension<mt19937> {
  void attach(const sycl::queue& queue, const stream_handle& stream);
  void store(const stream_handle& stream) const;

  mt19937_device_pointer device;
};

/// Waits, then writes the device state of an engine to a stream: the 624 live words, all of them used.
void mt19937_gpu_state_to_vqs_stream(engine_base_impl<mt19937>& engine, vqs_stream stream);

namespace gpu {

/// Advances an engine on a GPU device: on the device, or by a jump on the host where that is faster.
void skip_ahead(sycl::queue& queue, engine_base_impl<mt19937>& engine, std::uint64_t n);

/// `from_word` of the kernel frame with its coefficients.
template <class Computation, class Coefficients>
struct mt19937_from_word {
  using value_type = Computation;
  Coefficients coefficients;
  Computation operator()(std::uint32_t word) const {
    return from_word<mt19937, Computation>(word, coefficients);
  }
};

} // namespace gpu

template <>
struct engine_generation<mt19937> : plain_generation<mt19937> {
  template <class DistributionImpl, class Target>
  static sycl::event on_device(engine_base_impl<mt19937>& impl, sycl::queue& queue,
                               const DistributionImpl& distribution, std::int64_t n, const Target& target) {
    using distribution_type = typename DistributionImpl::distribution_type;

    mt19937_device_state& device = *impl.extension().device;
    const std::uint64_t words = words_of<distribution_type>(n);
    const gpu::mt19937_plan plan = gpu::mt19937_plan_for(queue.get_device(), words);
    const std::uint32_t* const states =
        plan.segments > 1 ? gpu::mt19937_start_segments(queue, device, plan) : nullptr;

    sycl::event event = queue.submit([&](sycl::handler& handler) {
      auto output = target.on_device(handler, n);
      handler.depends_on(device.last());
      if (n == 0)
        return;
      const auto transform = distribution.transform();
      const auto coefficients = distribution.template coefficients<mt19937>();
      using from_word = gpu::mt19937_from_word<typename DistributionImpl::computation_type,
                                               std::decay_t<decltype(coefficients)>>;
      using emit = gpu::mt19937_emit<typename distribution_type::result_type,
                                     std::decay_t<decltype(transform)>, from_word, decltype(output)>;
      const gpu::mt_local_words memory(sycl::range<1>(gpu::mt19937_window::capacity), handler);
      handler.parallel_for(sycl::nd_range<1>(plan.segments * plan.lanes, plan.lanes),
                           gpu::mt19937_generate<emit>(device.ring(), states, words, plan.power, memory,
                                                       emit{output, from_word{coefficients}, transform, n}));
    });
    device.set_last(event);
    return event;
  }
};

} // namespace kestro::hvl::rng::detail
