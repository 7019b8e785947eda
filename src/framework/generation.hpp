#pragma once

#include <cstdint>

#include "framework/engine_impl.hpp"
#include "framework/kernel_frame.hpp"
#include "framework/output.hpp"

namespace kestro::hvl::rng::detail {

/// How an engine generates. Engines with a way of their own (a device-side state, substreams) specialise it
/// and fall back to this one where the ordinary way serves.
template <class Engine>
struct engine_generation;

/// Advances the stream of an engine whose kernels have a copy of the state, then submits. When either throws, the
/// stream stands where it stood.
template <class Engine, class Advance, class Submit>
sycl::event advance_and_submit(engine_base_impl<Engine>& impl, Advance advance, Submit submit) {
  auto& record = impl.stream().template record<typename engine_kernel<Engine>::record_type>();
  const auto before = record;
  try {
    advance();
    return submit();
  } catch (...) {
    record = before;
    throw;
  }
}

/// The ordinary way.
template <class Engine>
struct plain_generation {
  /// The stream advances when the host task runs, so tasks on one engine follow each other.
  template <class DistributionImpl, class Target>
  static sycl::event on_host(engine_base_impl<Engine>& impl, sycl::queue& queue,
                             const DistributionImpl& distribution, std::int64_t n, const Target& target) {
    sycl::event event = queue.submit([&](sycl::handler& handler) {
      auto output = target.on_host(handler, n);
      handler.depends_on(impl.in_flight());
      portability::host_task(handler, [stream = impl.stream(), distribution, n, output] {
        if (n == 0)
          return;
        const int status = distribution.generate(stream.get(), n, &output[0]);
        check_stream_status(status, "generate", vqsStatusText(status));
      });
    });
    impl.set_in_flight(event);
    return event;
  }

  /// The kernel has a copy of the state; the stream advances here, so that the next call need not wait.
  template <class DistributionImpl, class Target>
  static sycl::event on_device(engine_base_impl<Engine>& impl, sycl::queue& queue,
                               const DistributionImpl& distribution, std::int64_t n, const Target& target) {
    using distribution_type = typename DistributionImpl::distribution_type;
    const auto state = engine_kernel<Engine>::capture(impl.stream());
    const auto command_group = [&](sycl::handler& handler) {
      auto output = target.on_device(handler, n);
      using func = gpu::engine_func<Engine, typename distribution_type::result_type,
                                    typename DistributionImpl::computation_type,
                                    typename DistributionImpl::transform_type, decltype(output)>;
      const func kernel(output, state, distribution.template coefficients<Engine>(), distribution.transform(),
                        n);
      if (n > 0)
        handler.parallel_for(sycl::range<1>(static_cast<std::size_t>((n + func::width - 1) / func::width)),
                             kernel);
    };
    return advance_and_submit(
        impl, [&] { impl.skip_ahead(words_of<distribution_type>(n)); },
        [&] { return queue.submit(command_group); });
  }
};

template <class Engine>
struct engine_generation : plain_generation<Engine> {};

template <class Engine, device_type Device>
template <class DistributionImpl, class Target>
sycl::event engine_base_impl_backend<Engine, Device>::generate(sycl::queue& queue,
                                                               const DistributionImpl& distribution,
                                                               std::int64_t n, const Target& target) {
  if constexpr (Device == device_type::cpu)
    return engine_generation<Engine>::on_host(*this, queue, distribution, n, target);
  else
    return engine_generation<Engine>::on_device(*this, queue, distribution, n, target);
}

} // namespace kestro::hvl::rng::detail
