// S. Kirkpatrick, E. P. Stoll, "A very fast shift-register sequence random number generator", Journal of Computational
// Physics 40 (1981): x(n) = x(n - 103) xor x(n - 250). (Some libraries compute x(n - 147) instead, which is the sequence
// of the reversed trinomial.)
#pragma once

#include "hvl/engines/facts.hpp"

namespace hvl::engines {

struct r250 {
  static constexpr facts about{
      "r250",          VQS_ENGINE_R250, 1,   word_kind::signed32, word_scale::signed32, false,
      skip_form::none, false,           true};
  using record = vqs_r250_record;
  using word = std::uint32_t;
  static constexpr std::uint32_t raw(word w) { return w; }

  struct recurrence {
    static constexpr int size = 250;
    static constexpr int lag = 103;
    static constexpr int middle = size - lag;
    static constexpr int step = 100;
    static constexpr int degree = size;
    static constexpr int unit = 1;
    static_assert(step % 4 == 0 && step <= lag);

    constexpr std::uint32_t next(const std::uint32_t* x) const { return x[0] ^ x[middle]; }
    constexpr std::uint32_t output(std::uint32_t y) const { return y; }
  };

  static constexpr recurrence recurrence_of(const record&) { return {}; }
};

} // namespace hvl::engines
