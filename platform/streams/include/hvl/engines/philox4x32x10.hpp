#pragma once

#include "hvl/engines/counter.hpp"

namespace hvl::engines {

// Ten rounds of Philox4x32.
struct philox4x32x10_cipher {
  static constexpr int key_words = 2;
  static constexpr int rounds = 10;
  static constexpr std::uint32_t multiplier0 = 0xD2511F53;
  static constexpr std::uint32_t multiplier1 = 0xCD9E8D57;
  static constexpr std::uint32_t bump0 = 0x9E3779B9;
  static constexpr std::uint32_t bump1 = 0xBB67AE85;

  static constexpr void encipher(std::uint32_t (&x)[4], const std::uint32_t (&key)[2]) {
    std::uint32_t k0 = key[0];
    std::uint32_t k1 = key[1];
    for (int round = 0; round < rounds; ++round) {
      const std::uint64_t p0 = std::uint64_t{multiplier0} * x[0];
      const std::uint64_t p1 = std::uint64_t{multiplier1} * x[2];
      x[0] = static_cast<std::uint32_t>(p1 >> 32) ^ x[1] ^ k0;
      x[1] = static_cast<std::uint32_t>(p1);
      x[2] = static_cast<std::uint32_t>(p0 >> 32) ^ x[3] ^ k1;
      x[3] = static_cast<std::uint32_t>(p0);
      k0 += bump0;
      k1 += bump1;
    }
  }
};

struct philox4x32x10 : counter_engine<philox4x32x10_cipher> {
  static constexpr facts about{"philox4x32x10",
                               VQS_ENGINE_PHILOX4X32X10,
                               1,
                               word_kind::signed32,
                               word_scale::signed32,
                               true,
                               skip_form::by_words,
                               false,
                               true};
  using record = vqs_philox4x32x10_record;

  [[gnu::always_inline]] static constexpr state state_of(const record& r) {
    return {{r.k0, r.k1}, {r.c0, r.c1, r.c2, r.c3}, r.remaining};
  }
  static constexpr void store(const state& s, record& r) {
    r.k0 = s.key[0];
    r.k1 = s.key[1];
    r.c0 = s.counter[0];
    r.c1 = s.counter[1];
    r.c2 = s.counter[2];
    r.c3 = s.counter[3];
    r.remaining = s.remaining;
  }
};

} // namespace hvl::engines
