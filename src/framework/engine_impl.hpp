#pragma once

#include <cstdint>
#include <initializer_list>
#include <iterator>
#include <memory>
#include <utility>

#include <kestro/hvl/rng/detail/engine_base.hpp>

#include "framework/device_type.hpp"
#include "framework/engine_traits.hpp"
#include "framework/stream.hpp"

namespace kestro::hvl::rng::detail {

/// The implementation behind an engine object: its stream, what the engine keeps beside it, and the last work
/// in flight that reads or writes either. Where a kernel has a copy of the state, nothing is in flight.
template <class Engine>
class engine_base_impl {
 public:
  engine_base_impl(std::int32_t identifier, std::uint64_t seed) : stream_(new_stream(identifier, seed)) {}
  engine_base_impl(std::int32_t identifier, std::int64_t count, const std::uint32_t* words)
      : stream_(new_stream(identifier, count, words)) {}

  /// A deep copy of `other` as it stands after all its earlier calls.
  explicit engine_base_impl(engine_base_impl* other) : stream_(copy_stream(other->up_to_date_stream())) {}

  /// Takes over a stream.
  explicit engine_base_impl(stream_handle stream) : stream_(std::move(stream)) {}

  engine_base_impl(const engine_base_impl&) = delete;
  engine_base_impl& operator=(const engine_base_impl&) = delete;
  virtual ~engine_base_impl() = default;

  /// On the host, after the work in flight.
  void skip_ahead(std::uint64_t num_to_skip) {
    check_stream_status(vqsSkipAheadStream_64(settled_stream().get(), num_to_skip), "skip_ahead", "");
  }
  void skip_ahead(std::initializer_list<std::uint64_t> num_to_skip) {
    check_stream_status(vqsSkipAheadStreamEx_64(settled_stream().get(),
                                                static_cast<std::int64_t>(num_to_skip.size()),
                                                num_to_skip.begin()),
                        "skip_ahead", "");
  }
  void leapfrog(std::uint64_t idx, std::uint64_t stride) {
    check_stream_status(vqsLeapfrogStream_64(settled_stream().get(), idx, stride), "leapfrog", "");
  }

  /// Waits for the work in flight.
  const stream_handle& settled_stream() {
    in_flight_.wait();
    return stream_;
  }

  /// As above, with what lives on the device brought back.
  const stream_handle& up_to_date_stream() {
    extension_.store(settled_stream());
    return stream_;
  }

  /// For submissions, which order themselves behind `in_flight`.
  const stream_handle& stream() const { return stream_; }
  const sycl::event& in_flight() const { return in_flight_; }
  void set_in_flight(sycl::event event) { in_flight_ = std::move(event); }

  engine_extension<Engine>& extension() { return extension_; }

 private:
  stream_handle stream_;
  engine_extension<Engine> extension_;
  sycl::event in_flight_;
};

/// One type per kind of device, so that generation is compiled once for each.
template <class Engine, device_type Device>
class engine_base_impl_backend final : public engine_base_impl<Engine> {
 public:
  using engine_base_impl<Engine>::engine_base_impl;

  /// Submits the generation of `n` values to `target`. Defined in framework/generation.hpp.
  template <class DistributionImpl, class Target>
  sycl::event generate(sycl::queue& queue, const DistributionImpl& distribution, std::int64_t n,
                       const Target& target);
};

/// The implementation object for the kind of device that `queue` has; the arguments are those of a
/// constructor of `engine_base_impl`. Throws `unsupported_device`.
template <class Engine, class... Arguments>
std::unique_ptr<engine_base_impl<Engine>> make_engine_impl(const sycl::queue& queue,
                                                           Arguments&&... arguments) {
  if (device_type_of(queue.get_device(), engine_traits<Engine>::name) == device_type::cpu)
    return std::make_unique<engine_base_impl_backend<Engine, device_type::cpu>>(
        std::forward<Arguments>(arguments)...);
  auto impl = std::make_unique<engine_base_impl_backend<Engine, device_type::gpu>>(
      std::forward<Arguments>(arguments)...);
  impl->extension().attach(queue, impl->stream());
  return impl;
}

/// From all of `words`, whatever the device.
template <class Engine, class Words>
std::unique_ptr<engine_base_impl<Engine>> make_engine_impl_of_words(const sycl::queue& queue,
                                                                    const Words& words) {
  return make_engine_impl<Engine>(queue, engine_traits<Engine>::identifier,
                                  static_cast<std::int64_t>(std::size(words)), std::data(words));
}

/// The door from the public engine object to its insides.
struct engine_access {
  template <class Engine>
  static sycl::queue& queue(engine_base<Engine>& engine) {
    return engine.queue_;
  }

  /// Throws `invalid_argument` for a moved-from engine.
  template <class Engine>
  static engine_base_impl<Engine>& impl(engine_base<Engine>& engine, const char* function) {
    if (!engine.impl_)
      throw invalid_argument("rng", function, "engine");
    return *engine.impl_;
  }

  template <class Engine>
  static void replace_impl(engine_base<Engine>& engine, std::unique_ptr<engine_base_impl<Engine>> impl) {
    engine.impl_ = std::move(impl);
  }
};

} // namespace kestro::hvl::rng::detail
