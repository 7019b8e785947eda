#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>

#include <sycl/sycl.hpp>

#include "framework/device_state.hpp"
#include "framework/engine_definition.hpp"
#include "framework/stream.hpp"

/// Engines that run a recurrence keep it in device memory on a GPU device. Each specialises `ring_traits` with
///
///   static int load(const stream_handle&, std::uint32_t* words);   the `size` words before the next output; returns the
///                                                                  place of that output in its unit
///   static void store(const std::uint32_t* words, int place, const stream_handle&);
///   static int jump_polynomial(const recurrence&, std::uint64_t distance, std::uint32_t* coefficients);   a status of the
///       stream library, and `degree` bits: word distance + j of the sequence is the exclusive or of the words unit (1 + i) + j over set bits i
namespace kestro::hvl::rng::detail {

template <class Engine>
struct ring_traits;

/// `size` live words, the last that were given out, in a ring with room for `step` more; behind the ring the place of the
/// oldest. Also holds what calls of many segments need.
template <class Engine>
class device_ring final : public device_state {
  using definition = definition_of<Engine>;
  using traits = ring_traits<Engine>;

 public:
  using recurrence_type = typename definition::recurrence;
  static constexpr int size = recurrence_type::size;
  static constexpr int ring_words = size + recurrence_type::step;
  static constexpr int polynomial_words = (recurrence_type::degree + 31) / 32;

  /// Throws `device_bad_alloc`.
  device_ring(const sycl::queue& queue, const stream_handle& stream)
      : queue_(queue), recurrence_(definition::recurrence_of(stream.record<typename definition::record>())),
        ring_(allocate(ring_words + 1, sycl::usm::alloc::shared)) {
    load(stream);
  }

  const recurrence_type& recurrence() const { return recurrence_; }
  std::uint32_t* ring() { return ring_.get(); }

  /// Of the next word in its unit, behind all work submitted.
  int place() const { return place_; }
  void pass(std::uint64_t words) {
    place_ = static_cast<int>((static_cast<std::uint64_t>(place_) + words) % recurrence_type::unit);
  }

  /// From and to a stream, behind the last work.
  void load(const stream_handle& stream) {
    wait();
    std::fill(ring_.get(), ring_.get() + ring_words + 1, 0u);
    place_ = traits::load(stream, ring_.get());
  }
  void store(const stream_handle& stream) {
    wait();
    const std::uint32_t oldest = ring_[ring_words];
    std::uint32_t words[size];
    for (std::uint32_t k = 0; k < size; ++k)
      words[k] = ring_[(oldest + k) % ring_words];
    traits::store(words, place_, stream);
  }

  /// Room for the start states of `segments` segments. Waits for the last work when it grows.
  std::uint32_t* segment_states(std::size_t segments) {
    if (segments > segments_) {
      wait();
      states_ = allocate(segments * size, sycl::usm::alloc::device);
      segments_ = segments;
    }
    return states_.get();
  }

  /// The polynomial that jumps 2^power words.
  const std::uint32_t* jump_polynomial(int power) {
    if (!polynomials_)
      polynomials_ = allocate(64 * polynomial_words, sycl::usm::alloc::host);
    std::uint32_t* const polynomial = polynomials_.get() + power * polynomial_words;
    const std::uint64_t distance = std::uint64_t{1} << power;
    if ((known_powers_ & distance) == 0) {
      check_stream_status(traits::jump_polynomial(recurrence_, distance, polynomial), "generate",
                          "no jump polynomial");
      known_powers_ |= distance;
    }
    return polynomial;
  }

 private:
  struct release {
    sycl::queue queue;
    // A memory that cannot be freed is lost; its owner's destructor has nobody to tell.
    void operator()(std::uint32_t* memory) const noexcept {
      try {
        sycl::free(memory, queue);
      } catch (...) {
      }
    }
  };
  using usm_words = std::unique_ptr<std::uint32_t[], release>;

  usm_words allocate(std::size_t words, sycl::usm::alloc kind) const {
    auto* const memory = sycl::malloc<std::uint32_t>(words, queue_, kind);
    if (memory == nullptr)
      throw device_bad_alloc("rng", about<Engine>.name, queue_.get_device());
    return usm_words(memory, release{queue_});
  }

  sycl::queue queue_;
  recurrence_type recurrence_;
  usm_words ring_;
  int place_ = 0;
  usm_words states_;
  std::size_t segments_ = 0;
  usm_words polynomials_;
  std::uint64_t known_powers_ = 0;
};

} // namespace kestro::hvl::rng::detail
