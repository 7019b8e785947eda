#pragma once

#include <cstdint>
#include <initializer_list>
#include <iterator>
#include <memory>
#include <utility>
#include <vector>

#include <kestro/hvl/rng/detail/engine_base.hpp>

#include "framework/device_type.hpp"
#include "framework/engine_definition.hpp"
#include "framework/stream.hpp"

namespace kestro::hvl::rng::detail {

/// What every engine has: its stream, and the last work in flight that reads or writes its state. Where a kernel has a
/// copy of the state, nothing is in flight.
class engine_state {
 public:
  explicit engine_state(stream_handle stream) : stream_(std::move(stream)) {}
  engine_state(const engine_state&) = delete;
  engine_state& operator=(const engine_state&) = delete;

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

  /// For submissions, which order themselves behind `in_flight`.
  const stream_handle& stream() const { return stream_; }
  const sycl::event& in_flight() const { return in_flight_; }
  void set_in_flight(sycl::event event) { in_flight_ = std::move(event); }

 protected:
  ~engine_state() = default;

 private:
  stream_handle stream_;
  sycl::event in_flight_;
};

/// What an engine keeps beside its stream; most keep nothing.
///
///   attach: builds what lives on the device, once the stream is there (GPU backend only)
///   store: brings it back into the stream
///   copy: takes over, from a settled engine, what its stream does not hold
///   check_saved: throws where that cannot be saved
struct no_extension {
  void attach(const sycl::queue&, const stream_handle&) {}
  void store(const stream_handle&) const {}
  void copy(const no_extension&) {}
  void check_saved() const {}
};

template <class Engine>
struct engine_extension : no_extension {};

/// The implementation behind an engine object.
template <class Engine>
class engine_base_impl : public engine_state {
 public:
  engine_base_impl(std::int32_t identifier, std::uint64_t seed)
      : engine_state(new_stream(identifier, seed)) {}
  engine_base_impl(std::int32_t identifier, std::int64_t count, const std::uint32_t* words)
      : engine_state(new_stream(identifier, count, words)) {}

  /// A deep copy of `other` as it stands after all its earlier calls.
  explicit engine_base_impl(engine_base_impl* other) : engine_state(copy_stream(other->up_to_date_stream())) {
    extension_.copy(other->extension_);
  }

  /// Takes over a stream.
  explicit engine_base_impl(stream_handle stream) : engine_state(std::move(stream)) {}

  virtual ~engine_base_impl() = default;

  /// The settled stream, with what lives on the device brought back.
  const stream_handle& up_to_date_stream() {
    extension_.store(settled_stream());
    return stream();
  }

  engine_extension<Engine>& extension() { return extension_; }

 private:
  engine_extension<Engine> extension_;
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

/// The implementation object for a GPU device. Without a stream there is nothing to build on the device.
template <class Engine, class... Arguments>
std::unique_ptr<engine_base_impl<Engine>> make_gpu_engine_impl(const sycl::queue& queue,
                                                               Arguments&&... arguments) {
  auto impl = std::make_unique<engine_base_impl_backend<Engine, device_type::gpu>>(
      std::forward<Arguments>(arguments)...);
  if (impl->stream().get() != nullptr)
    impl->extension().attach(queue, impl->stream());
  return impl;
}

/// The implementation object for the kind of device that `queue` has; the arguments are those of a
/// constructor of `engine_base_impl`. Throws `unsupported_device`.
template <class Engine, class... Arguments>
std::unique_ptr<engine_base_impl<Engine>> make_engine_impl(const sycl::queue& queue,
                                                           Arguments&&... arguments) {
  if (device_type_of(queue.get_device(), about<Engine>.name) == device_type::cpu)
    return std::make_unique<engine_base_impl_backend<Engine, device_type::cpu>>(
        std::forward<Arguments>(arguments)...);
  return make_gpu_engine_impl<Engine>(queue, std::forward<Arguments>(arguments)...);
}

/// Of one seed.
template <class Engine>
std::unique_ptr<engine_base_impl<Engine>>
make_engine_impl_of_seed(const sycl::queue& queue, std::uint64_t seed, std::uint32_t member = 0) {
  return make_engine_impl<Engine>(queue, identifier_of<Engine>(member), seed);
}

/// From all of `words`, whatever the device.
template <class Engine, class Words>
std::unique_ptr<engine_base_impl<Engine>>
make_engine_impl_of_words(const sycl::queue& queue, const Words& words, std::uint32_t member = 0) {
  return make_engine_impl<Engine>(queue, identifier_of<Engine>(member),
                                  static_cast<std::int64_t>(std::size(words)), std::data(words));
}

/// From 64-bit elements, read as words, the low one of each first. The CPU backend counts elements, not words, and so reads
/// the first half only.
template <class Engine>
std::unique_ptr<engine_base_impl<Engine>>
make_engine_impl_of_elements(const sycl::queue& queue, std::initializer_list<std::uint64_t> seed) {
  std::vector<std::uint32_t> words;
  for (const std::uint64_t element : seed) {
    words.push_back(static_cast<std::uint32_t>(element));
    words.push_back(static_cast<std::uint32_t>(element >> 32));
  }
  if (device_type_of(queue.get_device(), about<Engine>.name) == device_type::cpu)
    words.resize(seed.size());
  return make_engine_impl_of_words<Engine>(queue, words);
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
