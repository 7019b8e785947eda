#pragma once

#include <hvl/math/philox.hpp>

#include "hvl/engines/counter.hpp"

namespace hvl::engines {

struct philox4x32x10_cipher {
  static constexpr int key_words = 2;

  static constexpr void encipher(std::uint32_t (&x)[4], const std::uint32_t (&key)[2]) {
    const math::philox_block block =
        math::philox4x32x10_round_brute_10({{x[0], x[1], x[2], x[3]}}, key[0], key[1]);
    for (int k = 0; k < 4; ++k)
      x[k] = block.word[k];
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
