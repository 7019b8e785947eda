#include "engines/mt19937_device.hpp"

#include <algorithm>
#include <mutex>

#include <hvl/streams_detail.h>

namespace kestro::hvl::rng::detail {

using gpu::mt_middle;
using gpu::mt_ring;
using gpu::mt_words;

void mt19937_state_shift(const std::uint32_t* classic_words, std::uint32_t* out, std::uint32_t index) {
  const auto from = static_cast<int>(index);
  std::copy(classic_words + from, classic_words + mt_words, out);
  // Word k of the sequence that begins with the block.
  const auto word = [&](int k) { return k < mt_words ? classic_words[k] : out[k - from]; };
  for (int k = 0; k < from; ++k)
    out[mt_words - from + k] = gpu::mt19937_twist(classic_words[k], word(k + 1), word(k + mt_middle));
}

void mt19937_state_unwind(std::uint32_t* words) {
  std::uint32_t sequence[2 * mt_words] = {};
  std::copy(words, words + mt_words, sequence + mt_words);
  for (int k = mt_words - 1; k >= 0; --k) {
    // What the twist of words k and k + 1 added; the constant's top bit tells whether it took part.
    const std::uint32_t mixed = sequence[k + mt_words] ^ sequence[k + mt_middle];
    const std::uint32_t odd = mixed >> 31;
    const std::uint32_t joined = (mixed ^ (odd != 0 ? 0x9908B0DF : 0)) << 1 | odd;
    sequence[k] = joined & 0x80000000;
    if (k + 1 < mt_words)
      sequence[k + 1] |= joined & 0x7FFFFFFF;
  }
  std::copy(sequence, sequence + mt_words, words);
}

mt19937_device_state::mt19937_device_state(const sycl::queue& queue, const vqs_mt19937_record& record)
    : queue_(queue), ring_(allocate(mt_ring + 1, sycl::usm::alloc::shared)) {
  std::uint32_t words[mt_words];
  if (record.position >= mt_words) {
    replace_live_words(record.words);
  } else {
    mt19937_state_shift(record.words, words, record.position);
    mt19937_state_unwind(words);
    replace_live_words(words);
  }
}

void mt19937_device_state::copy_live_words(std::uint32_t* words) {
  last_.wait();
  const std::uint32_t oldest = ring_[mt_ring];
  for (std::uint32_t k = 0; k < mt_words; ++k)
    words[k] = ring_[(oldest + k) % mt_ring];
}

void mt19937_device_state::replace_live_words(const std::uint32_t* words) {
  last_.wait();
  std::copy(words, words + mt_words, ring_.get());
  std::fill(ring_.get() + mt_words, ring_.get() + mt_ring + 1, 0u);
}

std::uint32_t* mt19937_device_state::segment_states(std::size_t segments) {
  if (segments > segments_) {
    last_.wait();
    states_ = allocate(segments * mt_words, sycl::usm::alloc::device);
    segments_ = segments;
  }
  return states_.get();
}

const std::uint32_t* mt19937_device_state::jump_polynomial(int power) {
  if (!polynomials_)
    polynomials_ = allocate(64 * mt_words, sycl::usm::alloc::host);
  std::uint32_t* const polynomial = polynomials_.get() + power * mt_words;
  const std::uint64_t distance = std::uint64_t{1} << power;
  if ((known_powers_ & distance) == 0) {
    check_stream_status(vqsMt19937JumpPolynomial(distance, polynomial), "generate", "no jump polynomial");
    known_powers_ |= distance;
  }
  return polynomial;
}

mt19937_device_state::usm_words mt19937_device_state::allocate(std::size_t words,
                                                               sycl::usm::alloc kind) const {
  auto* const memory = sycl::malloc<std::uint32_t>(words, queue_, kind);
  if (memory == nullptr)
    throw device_bad_alloc("rng", "mt19937", queue_.get_device());
  return usm_words(memory, release{queue_});
}

// A memory that cannot be freed is lost; its owner's destructor has nobody to tell.
void mt19937_device_state::release::operator()(std::uint32_t* memory) const noexcept {
  try {
    sycl::free(memory, queue);
  } catch (...) {
  }
}

namespace {

// A list through the states themselves, as putting one aside must not fail. Without destructors, for engines of static
// duration come late.
constinit std::mutex retired_mutex;
constinit mt19937_device_state* first_retired = nullptr;

bool is_complete(const sycl::event& event) noexcept {
  try {
    return event.get_info<sycl::info::event::command_execution_status>() ==
           sycl::info::event_command_status::complete;
  } catch (...) {
    return false;
  }
}

} // namespace

void mt19937_retire::operator()(mt19937_device_state* state) const noexcept {
  const std::lock_guard lock(retired_mutex);
  state->next_retired_ = first_retired;
  first_retired = state;
  for (mt19937_device_state** at = &first_retired; *at != nullptr;) {
    mt19937_device_state* const one = *at;
    if (is_complete(one->last_)) {
      *at = one->next_retired_;
      delete one;
    } else {
      at = &one->next_retired_;
    }
  }
}

} // namespace kestro::hvl::rng::detail
