#pragma once

#include <algorithm>
#include <cstdint>

#include "framework/ring/generation.hpp"

namespace kestro::hvl::rng::detail {

/// What `ring_traits` of Mersenne twisters have in common: a record that holds a block and the place of the next word in it.
template <class Engine>
struct twister_ring {
  using recurrence = typename definition_of<Engine>::recurrence;
  using record = typename definition_of<Engine>::record;

  static int load(const stream_handle& stream, std::uint32_t* words) {
    const record& r = stream.record<record>();
    const recurrence twister = definition_of<Engine>::recurrence_of(r);
    if (r.position >= recurrence::size) {
      std::copy_n(r.words, recurrence::size, words);
    } else {
      twister.shift(r.words, r.position, words);
      twister.unwind(words);
    }
    return 0;
  }

  static void store(const std::uint32_t* words, int, const stream_handle& stream) {
    record& r = stream.record<record>();
    std::copy_n(words, recurrence::size, r.words);
    r.position = recurrence::size;
  }
};

} // namespace kestro::hvl::rng::detail
