#pragma once

#include <cstdint>

#include <hvl/streams_record.h>
#include <kestro/hvl/rng/engines.hpp>

#include "framework/engine_traits.hpp"

namespace kestro::hvl::rng::detail {

template <>
struct engine_traits<philox4x32x10> {
  static constexpr const char* name = "philox4x32x10";
  static constexpr std::int32_t identifier = VQS_ENGINE_PHILOX4X32X10;
  static constexpr bool has_uniform_bits = true;
};

namespace gpu {

/// The seven words of the stream.
struct philox4x32x10_state {
  std::uint32_t key[2];
  std::uint32_t counter[4];
  std::uint32_t remaining;
};

/// Ten rounds of Philox4x32. Overwrites the counter with the block's words and the key with the bumped key.
inline void philox4x32x10_round_brute_10(std::uint32_t (&x)[4], std::uint32_t (&key)[2]) {
  for (int round = 0; round < 10; ++round) {
    const std::uint64_t p0 = std::uint64_t{0xD2511F53} * x[0];
    const std::uint64_t p1 = std::uint64_t{0xCD9E8D57} * x[2];
    x[0] = static_cast<std::uint32_t>(p1 >> 32) ^ x[1] ^ key[0];
    x[1] = static_cast<std::uint32_t>(p1);
    x[2] = static_cast<std::uint32_t>(p0 >> 32) ^ x[3] ^ key[1];
    x[3] = static_cast<std::uint32_t>(p0);
    key[0] += 0x9E3779B9;
    key[1] += 0xBB67AE85;
  }
}

/// block(counter + step), modulo 2^128.
inline void philox4x32x10_block(const philox4x32x10_state& state, std::int64_t step,
                                std::uint32_t (&words)[4]) {
  const std::uint64_t low = std::uint64_t{state.counter[1]} << 32 | state.counter[0];
  const std::uint64_t high = std::uint64_t{state.counter[3]} << 32 | state.counter[2];
  const std::uint64_t sum = low + static_cast<std::uint64_t>(step);
  const std::uint64_t carry = sum < low ? 1 : 0;
  const std::uint64_t sign = step < 0 ? ~std::uint64_t{0} : 0;
  const std::uint64_t top = high + sign + carry;
  words[0] = static_cast<std::uint32_t>(sum);
  words[1] = static_cast<std::uint32_t>(sum >> 32);
  words[2] = static_cast<std::uint32_t>(top);
  words[3] = static_cast<std::uint32_t>(top >> 32);
  std::uint32_t key[2] = {state.key[0], state.key[1]};
  philox4x32x10_round_brute_10(words, key);
}

/// Words 4 item ... 4 item + 3 from the current position.
inline void philox4x32x10_generate(const philox4x32x10_state& state, std::int64_t item,
                                   std::uint32_t (&words)[4]) {
  const std::uint32_t remaining = state.remaining;
  if (remaining % 4 == 0) { // whole blocks
    philox4x32x10_block(state, item - (remaining == 4 ? 1 : 0), words);
  } else { // the last words of one block, then the first of the next
    std::uint32_t first[4], second[4];
    philox4x32x10_block(state, item - 1, first);
    philox4x32x10_block(state, item, second);
    for (std::uint32_t k = 0; k < 4; ++k)
      words[k] = k < remaining ? first[4 - remaining + k] : second[k - remaining];
  }
}

} // namespace gpu

template <>
struct engine_kernel<philox4x32x10> {
  using word_type = std::uint32_t;
  static constexpr word_scale scale = word_scale::signed32;
  static constexpr int blocks_per_item = 1;

  using record_type = vqs_philox4x32x10_record;
  using state = gpu::philox4x32x10_state;

  static state capture(const stream_handle& stream) {
    const auto& r = stream.record<vqs_philox4x32x10_record>();
    return {{r.k0, r.k1}, {r.c0, r.c1, r.c2, r.c3}, r.remaining};
  }

  static constexpr std::uint32_t raw(word_type word) { return word; }

  struct cursor {
    const state& from;
    std::int64_t item;
    void next(word_type (&words)[4]) { gpu::philox4x32x10_generate(from, item++, words); }
  };

  static cursor at(const state& from, std::int64_t item) { return {from, item * blocks_per_item}; }
};

} // namespace kestro::hvl::rng::detail
