#pragma once

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include <hvl/streams_detail.h>
#include <kestro/hvl/rng/functions.hpp>

#include "engines/mrg32k3a.hpp"
#include "engines/mt19937.hpp"
#include "engines/mt2203.hpp"
#include "engines/niederreiter.hpp"
#include "engines/r250.hpp"
#include "engines/sfmt19937.hpp"
#include "engines/sobol.hpp"
#include "framework/distribution_impl.hpp"
#include "offload/create_engine.hpp"

namespace kestro::hvl::rng::detail::openmp {

template <class Distribution>
word_use words_for(const Distribution& distribution) {
  return descriptor<Distribution, device_type::gpu>(distribution).words();
}

/// Generates values of one distribution from a stream of the host-side interface, on a device, and keeps that
/// stream where the device stops. The stream itself is only touched during the calls below.
template <class Distribution>
class generator {
 public:
  using result_type = typename Distribution::result_type;

  /// Submits the generation behind the events collected and advances the stream. When it throws nothing is in
  /// flight.
  virtual sycl::event generate(std::int64_t n, result_type* r) = 0;

  /// Brings the stream to where the engine stands behind `n` more values.
  virtual void skip_ahead(std::int64_t n) = 0;

  /// Engine words in a value.
  virtual std::int64_t get_scale() const = 0;

  virtual ~generator() = default;

  void depends_on(sycl::event event) { dependencies_.push_back(std::move(event)); }

 protected:
  std::vector<sycl::event> dependencies_;
};

/// The engine that goes on from a stream of the host-side interface on a device: it begins with a copy of the stream's
/// state, and brings the stream to where it stands.
template <class Engine>
class engine_of_stream {
 public:
  engine_of_stream(const sycl::queue& queue, vqs_stream stream) : engine_(queue, 1), stream_(stream) {
    stream_handle copy = gpu::copy_of_host_stream<Engine>(stream);
    if (copy.get() == nullptr)
      throw computation_error("rng", "engine initialization", "initialization failure");
    engine_access::replace_impl<Engine>(engine_, make_engine_impl<Engine>(queue, std::move(copy)));
  }

  Engine& engine() { return engine_; }

  /// Brings the stream behind as many words, which the engine has made.
  void advance_stream(std::uint64_t words) {
    if constexpr (on_ring<Engine>) {
      auto& impl = engine_access::impl<Engine>(engine_, "skip_ahead");
      if (impl.extension().ring != nullptr) {
        ring_state_to_stream(impl, stream_);
        return;
      }
    }
    if constexpr (about<Engine>.is_reproducible) // otherwise the stream stands nowhere
      check_stream_status(vqsAdvanceStream_64(stream_, 1, &words), "skip_ahead", "");
  }

 private:
  Engine engine_;
  vqs_stream stream_;
};

template <class Engine, class Distribution>
class generator_impl final : public generator<Distribution> {
 public:
  using typename generator<Distribution>::result_type;

  generator_impl(const sycl::queue& queue, vqs_stream stream, const Distribution& distribution)
      : engine_(queue, stream), distribution_(distribution) {}

  sycl::event generate(std::int64_t n, result_type* r) override {
    sycl::event event = rng::generate(distribution_, engine_.engine(), n, r, this->dependencies_);
    this->dependencies_.clear();
    try {
      skip_ahead(n);
    } catch (...) {
      event.wait();
      throw;
    }
    return event;
  }

  void skip_ahead(std::int64_t n) override {
    engine_.advance_stream(words_of(words_for(distribution_), values_of(distribution_, n)));
  }

  std::int64_t get_scale() const override {
    const word_use use = words_for(distribution_);
    return use.words / use.values;
  }

 private:
  engine_of_stream<Engine> engine_;
  Distribution distribution_;
};

/// The generator for the stream's engine. Throws `invalid_argument` ("stream") for what is no stream, and
/// `unimplemented` for a stream of an engine that has no device form.
template <class Distribution>
std::unique_ptr<generator<Distribution>> create_generator(const sycl::queue& queue, vqs_stream stream,
                                                          const Distribution& distribution) {
  using owner =
      std::unique_ptr<generator<Distribution>>; // std::make_unique for each pair takes seconds to compile
  const std::int32_t engine = vqsEngineOfStream(stream);
  if (engine < 0)
    throw invalid_argument("rng", "generate", "stream");
#define KESTRO_HVL_ENGINE(name)                                                                              \
  if (about<name>.has_member(engine))                                                                        \
    return owner(new generator_impl<name, Distribution>(queue, stream, distribution));
#include <kestro/hvl/rng/detail/engines.def>
#undef KESTRO_HVL_ENGINE
  throw unimplemented("rng", "generate", "engine of the stream");
}

} // namespace kestro::hvl::rng::detail::openmp
