// Values on their way past the caches. Whole lines leave; what has begun a line waits for the values behind it, so that
// memory is asked for nothing but the lines at the two ends of the output.
#pragma once

#include <xmmintrin.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "simd/kernels.hpp"

namespace hvl::streams {

class streamed_output {
 public:
  // The room for values that one commit may bring: a granule of any engine.
  static constexpr std::size_t room_bytes = max_block_words * 8;
  // Streaming stores leave the processor while it computes, as long as they come in runs that its store buffer holds.
  static constexpr std::size_t run_bytes = 2048;

  streamed_output(std::byte* out, const kernel_set& kernels) noexcept : out_(out), kernels_(kernels) {}
  streamed_output(const streamed_output&) = delete;
  streamed_output& operator=(const streamed_output&) = delete;

  // Where the next values go, room_bytes of them at most, aligned; and that they have come.
  std::byte* space() noexcept { return block_ + line_bytes; }
  void commit(std::size_t bytes) noexcept {
    const std::byte* from = space() - waiting_;
    waiting_ += bytes;
    if (const std::size_t head = to_line(); head != 0)
      from = store(from, std::min(head, waiting_));
    const std::size_t whole = waiting_ / line_bytes * line_bytes;
    kernels_.stream_lines(out_, from, whole);
    out_ += whole;
    waiting_ -= whole;
    std::memmove(block_, from + whole + waiting_ - line_bytes,
                 line_bytes); // what waits, right before the space
  }

  // The output itself where a line begins, null elsewhere; and that whole lines have been stored there.
  std::byte* whole_lines() const noexcept { return waiting_ == 0 && to_line() == 0 ? out_ : nullptr; }
  void pass(std::size_t bytes) noexcept { out_ += bytes; }

  // Stores what waits, and lets other threads rely on everything stored.
  void finish() noexcept {
    store(space() - waiting_, waiting_);
    _mm_sfence();
  }

 private:
  static constexpr std::size_t line_bytes = vector_alignment;

  // The bytes of out_'s line from it on; 0 where a line begins, which is everywhere but in the output's first line.
  std::size_t to_line() const noexcept { return -reinterpret_cast<std::uintptr_t>(out_) % line_bytes; }

  const std::byte* store(const std::byte* from, std::size_t bytes) noexcept {
    std::memcpy(out_, from, bytes);
    out_ += bytes;
    waiting_ -= bytes;
    return from + bytes;
  }

  std::byte* out_;          // where the first value that waits goes
  std::size_t waiting_ = 0; // bytes of values before the space
  const kernel_set& kernels_;
  alignas(vector_alignment) std::byte block_[line_bytes + room_bytes];
};

} // namespace hvl::streams
