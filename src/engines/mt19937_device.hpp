#pragma once

#include <cstdint>
#include <memory>
#include <utility>

#include <hvl/streams_record.h>
#include <sycl/sycl.hpp>

#include "framework/stream.hpp"

/// mt19937's state in device memory, and its ways to and from the stream's record.
namespace kestro::hvl::rng::detail {

namespace gpu {

inline constexpr int mt_words = 624;
inline constexpr int mt_middle = 397;
inline constexpr int mt_block = 224; // new words that depend on live ones only; fewer than 624 - 397
inline constexpr int mt_ring = mt_words + mt_block;

/// x(k + 624) from x(k), x(k + 1) and x(k + 397).
constexpr std::uint32_t mt19937_twist(std::uint32_t oldest, std::uint32_t next, std::uint32_t middle) {
  const std::uint32_t joined = (oldest & 0x80000000) | (next & 0x7FFFFFFF);
  return middle ^ joined >> 1 ^ ((0 - (next & 1)) & 0x9908B0DF);
}

} // namespace gpu

/// Writes to `out` the 624 words of the sequence that start at word `index` (0 ... 624) of the block `classic_words`.
void mt19937_state_shift(const std::uint32_t* classic_words, std::uint32_t* out, std::uint32_t index);

/// Replaces 624 consecutive words of the sequence by the 624 before them. (The lower 31 bits of the first of these
/// take no part in the sequence and come out 0.)
void mt19937_state_unwind(std::uint32_t* words);

/// 848 ring words, of which 624 are live, then the ring position of the oldest live word. Every output is the
/// tempered new word, so the live words are the last 624 that were given out; a record whose block is not used up
/// gives the words before its next output. Also holds what calls of many segments need.
class mt19937_device_state {
 public:
  /// Throws `device_bad_alloc`.
  mt19937_device_state(const sycl::queue& queue, const vqs_mt19937_record& record);

  std::uint32_t* ring() { return ring_.get(); }

  /// The last work that uses the state. All of it runs in order.
  const sycl::event& last() const { return last_; }
  void set_last(sycl::event event) { last_ = std::move(event); }

  /// The live words, oldest first. Both wait for the last work.
  void copy_live_words(std::uint32_t* words);
  void replace_live_words(const std::uint32_t* words);

  /// Room for the start states of `segments` segments. Waits for the last work when it grows.
  std::uint32_t* segment_states(std::size_t segments);

  /// The polynomial that jumps 2^power words.
  const std::uint32_t* jump_polynomial(int power);

 private:
  struct release {
    sycl::queue queue;
    void operator()(std::uint32_t* memory) const noexcept;
  };
  using usm_words = std::unique_ptr<std::uint32_t[], release>;

  usm_words allocate(std::size_t words, sycl::usm::alloc kind) const;

  sycl::queue queue_;
  usm_words ring_;
  usm_words states_;
  std::size_t segments_ = 0;
  usm_words polynomials_;
  std::uint64_t known_powers_ = 0;
  sycl::event last_;

  friend struct mt19937_retire;
  mt19937_device_state* next_retired_ = nullptr;
};

/// Ends a device state whose engine is gone, without waiting or submitting: while work still uses the state it is put
/// aside, and freed with a later one. What work uses when the process ends is never freed.
struct mt19937_retire {
  void operator()(mt19937_device_state* state) const noexcept;
};
using mt19937_device_pointer = std::unique_ptr<mt19937_device_state, mt19937_retire>;

} // namespace kestro::hvl::rng::detail
