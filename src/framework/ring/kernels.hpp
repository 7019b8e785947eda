#pragma once

#include <algorithm>
#include <cstdint>

#include <sycl/sycl.hpp>

#include "framework/kernel_frame.hpp"
#include "framework/ring/device_ring.hpp"

/// The kernels of engines on a ring. A work-group keeps the last words of the sequence in a window of local memory and
/// extends it by a step at a time.
namespace kestro::hvl::rng::detail::gpu {

using local_words = sycl::local_accessor<std::uint32_t, 1>;

constexpr std::uint64_t round_up(std::uint64_t words, int unit) {
  const auto u = static_cast<std::uint64_t>(unit);
  return (words + u - 1) / u * u;
}

/// What a window is extended by at once: a step, or several where a step is short.
template <class Recurrence>
inline constexpr int block_words = std::max(1, 256 / Recurrence::step / 2) * Recurrence::step;

/// A work-group's view of the sequence: the live words, and new ones behind them. All items of the group make the same
/// calls.
template <class Recurrence>
class ring_window {
 public:
  static constexpr int size = Recurrence::size;
  static constexpr int step = Recurrence::step;
  static constexpr int block = block_words<Recurrence>;
  static constexpr int unit = Recurrence::unit;
  static constexpr int capacity = size + 8 * block;
  static constexpr int ring_words = size + step;

  /// The word behind the live ones has that place in its unit. Indices into the window keep their words' places.
  ring_window(const Recurrence& recurrence, int place, const sycl::nd_item<1>& item,
              const local_words& memory)
      : recurrence_(recurrence), item_(item), x_(&memory[0]), live_(place),
        lane_(static_cast<int>(item.get_local_id(0))), lanes_(static_cast<int>(item.get_local_range(0))) {}

  int lane() const { return lane_; }
  int lanes() const { return lanes_; }

  void load_ring(const std::uint32_t* ring) {
    const std::uint32_t oldest = ring[ring_words];
    for (int k = lane_; k < size; k += lanes_)
      x_[live_ + k] = ring[(oldest + static_cast<std::uint32_t>(k)) % ring_words];
    barrier();
  }

  void load(const std::uint32_t* words) {
    for (int k = lane_; k < size; k += lanes_)
      x_[live_ + k] = words[k];
    barrier();
  }

  void store(std::uint32_t* words) const {
    for (int k = lane_; k < size; k += lanes_)
      words[k] = x_[live_ + k];
  }

  /// The live words become the ring's.
  void store_ring(std::uint32_t* ring) const {
    store(ring);
    if (lane_ == 0)
      ring[ring_words] = 0;
  }

  const std::uint32_t* live() const { return x_ + live_; }

  /// Computes the next `count` words, at most a block, and returns them.
  const std::uint32_t* extend(int count) {
    if (live_ + size + count > capacity)
      slide();
    std::uint32_t* const x = x_ + live_;
    for (int first = 0; first < count; first += step) {
      const int end = sycl::min(first + step, count);
      for (int k = first + lane_; k < end; k += lanes_)
        x[size + k] = next(x + k, (live_ + k) % unit);
      barrier();
    }
    return x + size;
  }

  /// The oldest `count` words are live no longer.
  void advance(int count) { live_ += count; }

 private:
  std::uint32_t next(const std::uint32_t* x, [[maybe_unused]] int place) const {
    if constexpr (unit == 1)
      return recurrence_.next(x);
    else
      return recurrence_.next(x, place);
  }

  void barrier() const {
    if (lanes_ > 1)
      sycl::group_barrier(item_.get_group());
  }

  void slide() {
    barrier(); // others may still read the words that are about to be overwritten
    const int place = live_ % unit;
    for (int k = lane_; k < size; k += lanes_)
      x_[place + k] = x_[live_ + k];
    live_ = place;
    barrier();
  }
  static_assert(capacity - size - block >= size + unit, "a slide never overlaps itself");

  const Recurrence& recurrence_;
  const sycl::nd_item<1>& item_;
  std::uint32_t* x_;
  int live_;
  int lane_, lanes_;
};

/// A call is cut into segments of 2^power words (the last one takes the rest), each made by a work-group of `lanes`
/// work-items from a start state of its own.
struct ring_plan {
  std::size_t segments;
  int power;
  std::size_t lanes;
};

/// Generates the words of a call. `Emit` takes them in whole units of `Emit::unit_words`; a segment makes the units that
/// begin in it, and the last one leaves its live words in the ring.
template <class Recurrence, class Emit>
class ring_generate {
  static constexpr int unit = Emit::unit_words;
  static constexpr int block = block_words<Recurrence> / unit * unit;
  static_assert(block > 0, "a step holds a unit");

 public:
  /// `states` is null when the one segment starts from the ring.
  ring_generate(const Recurrence& recurrence, int place, std::uint32_t* ring, const std::uint32_t* states,
                std::uint64_t words, int power, const local_words& memory, const Emit& emit)
      : recurrence_(recurrence), place_(place), ring_(ring), states_(states), words_(words), power_(power),
        memory_(memory), emit_(emit) {}

  void operator()(sycl::nd_item<1> item) const {
    ring_window<Recurrence> window(recurrence_, place_, item, memory_);
    const auto segment = static_cast<std::uint64_t>(item.get_group(0));
    if (states_ == nullptr)
      window.load_ring(ring_);
    else
      window.load(states_ + segment * Recurrence::size);

    const std::uint64_t length = std::uint64_t{1} << power_;
    const std::uint64_t start = segment * length;
    const bool is_last = states_ == nullptr || words_ - start <= length;
    const std::uint64_t end = is_last ? words_ : sycl::min(words_, round_up(start + length, unit));
    std::uint64_t position = sycl::min(words_, round_up(start, unit));
    window.extend(static_cast<int>(position - start)); // of a unit that began in the segment before
    window.advance(static_cast<int>(position - start));
    while (position < end) {
      const int count = end - position < block ? static_cast<int>(end - position) : block;
      const int whole = static_cast<int>(round_up(static_cast<std::uint64_t>(count), unit));
      const std::uint32_t* const words = window.extend(whole);
      emit_(recurrence_, words, position, whole, window.lane(), window.lanes());
      window.advance(count);
      position += static_cast<std::uint64_t>(count);
    }
    if (is_last)
      window.store_ring(ring_);
  }

 private:
  Recurrence recurrence_;
  int place_;
  std::uint32_t* ring_;
  const std::uint32_t* states_;
  std::uint64_t words_;
  int power_;
  local_words memory_;
  Emit emit_;
};

/// Drops the words: a skip.
struct drop_words {
  static constexpr int unit_words = 4;
  template <class Recurrence>
  void operator()(const Recurrence&, const std::uint32_t*, std::uint64_t, int, int, int) const {}
};

template <class Recurrence>
using skip_ahead_gpu = ring_generate<Recurrence, drop_words>;

/// Turns words into values. The last unit of a call may reach past its words; what comes of those is not stored.
template <class Writer>
struct emit_values {
  static constexpr int unit_words = Writer::unit_words;

  Writer writer;

  template <class Recurrence>
  void operator()(const Recurrence& recurrence, const std::uint32_t* words, std::uint64_t position, int count,
                  int lane, int lanes) const {
    const std::int64_t first = static_cast<std::int64_t>(position) / unit_words;
    for (int u = lane; u < count / unit_words; u += lanes) {
      std::uint32_t outputs[unit_words];
      KESTRO_HVL_UNROLL
      for (int k = 0; k < unit_words; ++k)
        outputs[k] = recurrence.output(words[u * unit_words + k]);
      writer.write(outputs, (first + u) * Writer::unit_values);
    }
  }
};

/// Work-group g makes the start state of segment distance + g from that of segment g. (H. Haramoto, M. Matsumoto,
/// P. L'Ecuyer, "A fast jump ahead algorithm for linear recurrences in a polynomial space", SETA 2008.)
template <class Recurrence>
class ring_jump {
  static constexpr int size = Recurrence::size;
  static constexpr int unit = Recurrence::unit;
  static_assert(block_words<Recurrence> >= 32 * unit);

 public:
  ring_jump(const Recurrence& recurrence, int place, const std::uint32_t* ring, std::uint32_t* states,
            const std::uint32_t* polynomial, std::size_t distance, const local_words& memory)
      : recurrence_(recurrence), place_(place), ring_(ring), states_(states), polynomial_(polynomial),
        distance_(distance), memory_(memory) {}

  void operator()(sycl::nd_item<1> item) const {
    ring_window<Recurrence> window(recurrence_, place_, item, memory_);
    const std::size_t from = item.get_group(0);
    std::uint32_t* const to = states_ + (distance_ + from) * size;
    if (distance_ == 1) { // the first jump also takes the first segment's state from the ring
      window.load_ring(ring_);
      window.store(states_);
    } else {
      window.load(states_ + from * size);
    }
    for (int j = window.lane(); j < size; j += window.lanes())
      to[j] = 0;
    // Word j of the new state is the exclusive or of the words unit (1 + i) + j over the set bits i of the polynomial. Every
    // item adds to the same words of `to` each time, so no barrier is needed between additions.
    for (int word = 0; word < (Recurrence::degree + 31) / 32; ++word) {
      window.extend(32 * unit);
      int from_bit = unit;
      for (std::uint32_t bits = polynomial_[word]; bits != 0; bits >>= 1, from_bit += unit)
        if (bits & 1)
          for (int j = window.lane(); j < size; j += window.lanes())
            to[j] ^= window.live()[from_bit + j];
      window.advance(32 * unit);
    }
  }

 private:
  Recurrence recurrence_;
  int place_;
  const std::uint32_t* ring_;
  std::uint32_t* states_;
  const std::uint32_t* polynomial_;
  std::size_t distance_;
  local_words memory_;
};

} // namespace kestro::hvl::rng::detail::gpu
