#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>

#include <hvl/streams_detail.h>

#include "framework/generation.hpp"
#include "framework/ring/segments.hpp"

/// Engines on a ring: their state on a GPU device lives in device memory, so every call follows the one before.
namespace kestro::hvl::rng::detail {

/// The GPU backend's ring, which stands for the stream; the stream is brought up to date when asked for.
template <class Engine>
struct ring_extension : no_extension {
  void attach(const sycl::queue& queue, const stream_handle& stream) {
    ring.reset(new device_ring<Engine>(queue, stream));
  }

  void store(const stream_handle& stream) const {
    if (ring)
      ring->store(stream);
  }

  std::unique_ptr<device_ring<Engine>, retire> ring;
};

template <class Engine>
struct generation_on_ring {
  static constexpr bool has_substream_modes = false;

  template <class Transform, class Target>
  static sycl::event submit(engine_base_impl<Engine>& impl, sycl::queue& queue, const Transform& transform,
                            std::uint64_t words, std::int64_t n, const Target& target) {
    using recurrence = typename device_ring<Engine>::recurrence_type;
    device_ring<Engine>& ring = *impl.extension().ring;
    const gpu::ring_plan plan = gpu::plan_segments(queue.get_device(), words, gpu::block_words<recurrence>);
    const std::uint32_t* const states = plan.segments > 1 ? gpu::start_segments(queue, ring, plan) : nullptr;
    sycl::event event = queue.submit([&](sycl::handler& handler) {
      auto output = target.template on_device<typename Transform::result_type>(handler, n);
      handler.depends_on(ring.last());
      if (n == 0)
        return;
      using emit = gpu::emit_values<gpu::value_writer<Engine, Transform, decltype(output)>>;
      const gpu::local_words memory(sycl::range<1>(gpu::ring_window<recurrence>::capacity), handler);
      handler.parallel_for(sycl::nd_range<1>(plan.segments * plan.lanes, plan.lanes),
                           gpu::ring_generate<recurrence, emit>(ring.recurrence(), ring.place(), ring.ring(),
                                                                states, words, plan.power, memory,
                                                                emit{{output, transform, n}}));
    });
    ring.pass(words);
    ring.set_last(event);
    return event;
  }
};

/// Advances an engine that has a ring: on the device, or by a jump on the host where that is faster.
template <class Engine>
void skip_on_ring(sycl::queue& queue, engine_base_impl<Engine>& impl, std::uint64_t n) {
  using recurrence = typename device_ring<Engine>::recurrence_type;
  // Up to here stepping on the device takes less time than the polynomial of a new distance.
  constexpr std::uint64_t stepping_words = std::uint64_t{1} << 22;

  device_ring<Engine>& ring = *impl.extension().ring;
  if (n == 0)
    return;
  if (n <= stepping_words) {
    const std::size_t lanes = gpu::plan_segments(queue.get_device(), 0, gpu::block_words<recurrence>).lanes;
    ring.set_last(queue.submit([&](sycl::handler& handler) {
      handler.depends_on(ring.last());
      const gpu::local_words memory(sycl::range<1>(gpu::ring_window<recurrence>::capacity), handler);
      handler.parallel_for(sycl::nd_range<1>(lanes, lanes),
                           gpu::skip_ahead_gpu<recurrence>(ring.recurrence(), ring.place(), ring.ring(),
                                                           nullptr, n, 0, memory, {}));
    }));
    ring.pass(n);
    return;
  }
  const stream_handle& stream = impl.up_to_date_stream();
  check_stream_status(vqsAdvanceStream_64(stream.get(), 1, &n), "skip_ahead", "");
  ring.load(stream);
}

/// Waits, then writes the device state of an engine to a stream, whose header stays as it is.
template <class Engine>
void ring_state_to_stream(engine_base_impl<Engine>& engine, vqs_stream stream) {
  using record = typename definition_of<Engine>::record;
  const auto* const from =
      reinterpret_cast<const std::byte*>(&engine.up_to_date_stream().template record<record>());
  std::copy(from + sizeof(vqs_record_header), from + sizeof(record),
            static_cast<std::byte*>(stream) + sizeof(vqs_record_header));
}

} // namespace kestro::hvl::rng::detail
