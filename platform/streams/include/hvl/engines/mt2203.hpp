// Twisters of 2203 bits, as many as have parameters in our table (M. Matsumoto, T. Nishimura, "Dynamic creation of
// pseudorandom number generators", Monte Carlo and Quasi-Monte Carlo Methods 1998).
#pragma once

#include "hvl/engines/facts.hpp"
#include "hvl/engines/twister.hpp"

namespace hvl::engines {

struct mt2203 {
  static constexpr facts about{"mt2203",
                               VQS_ENGINE_MT2203,
                               6024,
                               word_kind::signed32,
                               word_scale::signed32,
                               true,
                               skip_form::none,
                               false,
                               true};
  using record = vqs_mt2203_record;
  using word = std::uint32_t;
  static constexpr std::uint32_t raw(word w) { return w; }

  struct parameters {
    static constexpr int size = 69;
    static constexpr int middle = 34;
    static constexpr int step = 32;
    static constexpr int degree = 2240; // 37 more than that of the state: whole words
    static constexpr int unit = 1;
    static_assert(step % 4 == 0 && step < size - middle);

    static constexpr std::uint32_t upper = 0xFFFFFFE0;
    static constexpr int first_shift = 12;

    std::uint32_t matrix;
    std::uint32_t tempering_b, tempering_c;
  };
  using recurrence = twister<parameters>;

  [[gnu::always_inline]] static constexpr recurrence recurrence_of(const record& r) {
    return {{r.matrix, r.tempering_b, r.tempering_c}};
  }
};

} // namespace hvl::engines
