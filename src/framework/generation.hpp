#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "framework/distribution_impl.hpp"
#include "framework/engine_impl.hpp"
#include "framework/kernel_frame.hpp"
#include "framework/output.hpp"
#include "service/portability.hpp"

namespace kestro::hvl::rng::detail {

/// On a CPU device the stream library generates, for engines of every type alike. The stream advances when the host task
/// runs, so tasks on one engine follow each other.
template <class DistributionImpl, class Target>
sycl::event generate_on_host(engine_state& state, sycl::queue& queue, const DistributionImpl& distribution,
                             std::int64_t n, const Target& target) {
  sycl::event event = queue.submit([&](sycl::handler& handler) {
    auto output = target.on_host(handler, n);
    handler.depends_on(state.in_flight());
    portability::host_task(handler, [stream = state.stream(), distribution, n, output] {
      if (n == 0)
        return;
      const int status = distribution.generate(stream.get(), n, &output[0]);
      check_stream_status(status, "generate", vqsStatusText(status));
    });
  });
  state.set_in_flight(event);
  return event;
}

/// Of words that kernels cannot make: the values are made on the host, and copied to the device from there.
template <class DistributionImpl, class Target>
sycl::event generate_and_copy(engine_state& state, sycl::queue& queue, const DistributionImpl& distribution,
                              std::int64_t n, const Target& target) {
  using T = typename Target::value_type;
  if (n == 0)
    return queue.submit([&](sycl::handler& handler) { target.on_host(handler, n); });
  const auto values = std::make_shared<T[]>(static_cast<std::size_t>(n));
  return while_in_use(values, [&] {
    const sycl::event made = queue.submit([&](sycl::handler& handler) {
      portability::host_task(handler, [stream = state.stream(), distribution, n, values] {
        const int status = distribution.generate(stream.get(), n, values.get());
        check_stream_status(status, "generate", vqsStatusText(status));
      });
    });
    return queue.submit([&](sycl::handler& handler) {
      handler.depends_on(made);
      target.copy_from(handler, values, n);
    });
  });
}

/// The kernel of an engine whose words follow from a position, behind another event where there is one.
template <class Engine, class Transform, class Target>
sycl::event submit_at_position(sycl::queue& queue, const typename definition_of<Engine>::state& state,
                               const sycl::event* after, const Transform& transform, std::int64_t n,
                               const Target& target) {
  return queue.submit([&](sycl::handler& handler) {
    auto output = target.template on_device<typename Transform::result_type>(handler, n);
    if (after != nullptr)
      handler.depends_on(*after);
    using func = gpu::engine_func<Engine, typename Transform::result_type, typename Transform::uniform_type,
                                  Transform, decltype(output)>;
    const func kernel(output, state, transform, n);
    if (n > 0)
      handler.parallel_for(sycl::range<1>(kernel.items_of(n)), kernel);
  });
}

/// How an engine whose words follow from a position generates on a GPU device. The kernel has a copy of the state; the
/// stream advances once it is submitted, so that the next call need not wait. Engines with a way of their own specialise
/// `engine_generation`.
template <class Engine>
struct generation_at_position {
  static constexpr bool has_substream_modes = false;

  template <class Transform, class Target>
  static sycl::event submit(engine_base_impl<Engine>& impl, sycl::queue& queue, const Transform& transform,
                            std::uint64_t words, std::int64_t n, const Target& target) {
    sycl::event event = submit_at_position<Engine>(
        queue,
        definition_of<Engine>::state_of(
            impl.stream().template record<typename definition_of<Engine>::record>()),
        nullptr, transform, n, target);
    impl.skip_ahead(words);
    return event;
  }
};

template <class Engine>
struct engine_generation : generation_at_position<Engine> {};

/// Submits a transform by `submit`; of one in two steps the first, and behind it the second, which does not know the engine.
template <class Transform, class Target, class Submit>
sycl::event in_steps(sycl::queue& queue, const Transform& transform, std::int64_t n, const Target& target,
                     const Submit& submit) {
  if constexpr (requires { transform.first_step(); }) {
    sycl::event first = submit(transform.first_step());
    try {
      return transform.second_step(queue, first, n, target);
    } catch (...) {
      first.wait(); // it writes to the caller's memory
      throw;
    }
  } else {
    return submit(transform);
  }
}

template <class Engine, device_type Device>
template <class DistributionImpl, class Target>
sycl::event engine_base_impl_backend<Engine, Device>::generate(sycl::queue& queue,
                                                               const DistributionImpl& distribution,
                                                               std::int64_t n, const Target& target) {
  using generation = engine_generation<Engine>;
  if constexpr (generation::has_substream_modes)
    if (generation::in_substreams(*this))
      return generation::generate_impl_sub_seq(*this, queue, distribution, n, target);
  if constexpr (Device == device_type::cpu)
    return generate_on_host(*this, queue, distribution, n, target);
  else if constexpr (!about<Engine>.is_reproducible)
    return generate_and_copy(*this, queue, distribution, n, target);
  else
    return distribution.with_transform(queue, [&](const auto& transform) {
      const std::uint64_t words = words_of(transform.words, n);
      return in_steps(queue, transform, n, target, [&](const auto& step) {
        return generation::submit(*this, queue, step, words, n, target);
      });
    });
}

} // namespace kestro::hvl::rng::detail
