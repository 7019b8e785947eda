#pragma once

#include <cstdint>

#include <sycl/sycl.hpp>

#include "engines/mt19937_device.hpp"

/// The kernels of mt19937. A work-group keeps the last words of the sequence in a window of local memory and extends it
/// by a block at a time.
namespace kestro::hvl::rng::detail::gpu {

constexpr std::uint32_t mt19937_temper(std::uint32_t y) {
  y ^= y >> 11;
  y ^= y << 7 & 0x9D2C5680;
  y ^= y << 15 & 0xEFC60000;
  return y ^ y >> 18;
}

/// A call is cut into segments of 2^power words (the last one takes the rest), each made by a work-group of `lanes`
/// work-items from a start state of its own.
struct mt19937_plan {
  std::size_t segments;
  int power;
  std::size_t lanes;
};

mt19937_plan mt19937_plan_for(const sycl::device& device, std::uint64_t words);

/// Submits the jumps from the ring to the start states of the plan's segments, and returns where these will lie. The
/// ring stays as it is.
const std::uint32_t* mt19937_start_segments(sycl::queue& queue, mt19937_device_state& state,
                                            const mt19937_plan& plan);

/// Words that are turned into values together; segments and blocks start at whole units.
inline constexpr int mt_unit = 4;
static_assert(mt_block % mt_unit == 0);

using mt_local_words = sycl::local_accessor<std::uint32_t, 1>;

/// A work-group's view of the sequence: 624 live words, and new ones behind them. All items of the group make the same
/// calls.
class mt19937_window {
 public:
  static constexpr int capacity = mt_words + 8 * mt_block;

  mt19937_window(const sycl::nd_item<1>& item, const mt_local_words& memory)
      : item_(item), x_(&memory[0]), lane_(static_cast<int>(item.get_local_id(0))),
        lanes_(static_cast<int>(item.get_local_range(0))) {}

  int lane() const { return lane_; }
  int lanes() const { return lanes_; }

  void load_ring(const std::uint32_t* ring) {
    const std::uint32_t oldest = ring[mt_ring];
    for (int k = lane_; k < mt_words; k += lanes_)
      x_[k] = ring[(oldest + static_cast<std::uint32_t>(k)) % mt_ring];
    barrier();
  }

  void load(const std::uint32_t* words) {
    for (int k = lane_; k < mt_words; k += lanes_)
      x_[k] = words[k];
    barrier();
  }

  void store(std::uint32_t* words) const {
    for (int k = lane_; k < mt_words; k += lanes_)
      words[k] = x_[live_ + k];
  }

  /// The live words become the ring's.
  void store_ring(std::uint32_t* ring) const {
    store(ring);
    if (lane_ == 0)
      ring[mt_ring] = 0;
  }

  const std::uint32_t* live() const { return x_ + live_; }

  /// Computes the next `count` words, at most a block, and returns them.
  const std::uint32_t* extend(int count) {
    if (live_ + mt_words + count > capacity)
      slide();
    std::uint32_t* const x = x_ + live_;
    if (lanes_ == 1) { // a loop of stride one, which vectorises
      for (int k = 0; k < count; ++k)
        x[mt_words + k] = mt19937_twist(x[k], x[k + 1], x[k + mt_middle]);
    } else {
      for (int k = lane_; k < count; k += lanes_)
        x[mt_words + k] = mt19937_twist(x[k], x[k + 1], x[k + mt_middle]);
    }
    barrier();
    return x + mt_words;
  }

  /// The oldest `count` words are live no longer.
  void advance(int count) { live_ += count; }

 private:
  void barrier() const {
    if (lanes_ > 1)
      sycl::group_barrier(item_.get_group());
  }

  void slide() {
    barrier(); // others may still read the words that are about to be overwritten
    for (int k = lane_; k < mt_words; k += lanes_)
      x_[k] = x_[live_ + k];
    live_ = 0;
    barrier();
  }
  static_assert(capacity - mt_words - mt_block >= mt_words, "a slide never overlaps itself");

  const sycl::nd_item<1>& item_;
  std::uint32_t* x_;
  int live_ = 0;
  int lane_, lanes_;
};

/// Generates the words of a call; `Emit` takes each block. The last segment leaves its live words in the ring.
template <class Emit>
class mt19937_generate {
 public:
  /// `states` is null when the one segment starts from the ring.
  mt19937_generate(std::uint32_t* ring, const std::uint32_t* states, std::uint64_t words, int power,
                   const mt_local_words& memory, const Emit& emit)
      : ring_(ring), states_(states), words_(words), power_(power), memory_(memory), emit_(emit) {}

  void operator()(sycl::nd_item<1> item) const {
    mt19937_window window(item, memory_);
    const auto segment = static_cast<std::uint64_t>(item.get_group(0));
    if (states_ == nullptr)
      window.load_ring(ring_);
    else
      window.load(states_ + segment * mt_words);

    const std::uint64_t length = std::uint64_t{1} << power_;
    std::uint64_t position = segment * length;
    const bool is_last = states_ == nullptr || words_ - position <= length;
    const std::uint64_t end = is_last ? words_ : position + length;
    while (position < end) {
      const int count = end - position < mt_block ? static_cast<int>(end - position) : mt_block;
      const int whole = (count + mt_unit - 1) / mt_unit * mt_unit;
      const std::uint32_t* const block = window.extend(whole);
      emit_(block, position, whole, window.lane(), window.lanes());
      window.advance(count);
      position += static_cast<std::uint64_t>(count);
    }
    if (is_last)
      window.store_ring(ring_);
  }

 private:
  std::uint32_t* ring_;
  const std::uint32_t* states_;
  std::uint64_t words_;
  int power_;
  mt_local_words memory_;
  Emit emit_;
};

/// Drops the words: a skip.
struct mt19937_drop {
  void operator()(const std::uint32_t*, std::uint64_t, int, int, int) const {}
};

/// Turns words into values, a unit of four words at a time: a loop over units vectorises, as in the kernel frame. The last
/// unit of a call may reach past its words; what comes of those is not stored.
template <class T, class Transform, class FromWord, class Output>
struct mt19937_emit {
  static constexpr int values_per_unit = mt_unit / Transform::words_per_value;

  Output output;
  FromWord from_word;
  Transform transform;
  std::int64_t n;

  void operator()(const std::uint32_t* words, std::uint64_t position, int count, int lane, int lanes) const {
    const std::int64_t first = static_cast<std::int64_t>(position) / mt_unit * values_per_unit;
    const int units = count / mt_unit;
    if (lanes == 1 && first + units * values_per_unit <= n) {
      for (int u = 0; u < units; ++u)
        emit<false>(words + u * mt_unit, first + u * values_per_unit);
    } else {
      for (int u = lane; u < units; u += lanes)
        emit<true>(words + u * mt_unit, first + u * values_per_unit);
    }
  }

 private:
  template <bool AtEnd>
  void emit(const std::uint32_t* words, std::int64_t at) const {
    typename FromWord::value_type uniforms[mt_unit];
    for (int k = 0; k < mt_unit; ++k)
      uniforms[k] = from_word(mt19937_temper(words[k]));
    T values[values_per_unit];
    transform(uniforms, values);
    for (int k = 0; k < values_per_unit; ++k)
      if (!AtEnd || at + k < n)
        output[static_cast<std::size_t>(at + k)] = values[k];
  }
};

} // namespace kestro::hvl::rng::detail::gpu
