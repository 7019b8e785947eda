// Words of the processor's generator of random numbers, or of the operating system's. They follow from nothing, so there is
// no position and no recurrence, and kernels cannot make them.
#pragma once

#include "hvl/engines/facts.hpp"

namespace hvl::engines {

struct nondeterministic {
  static constexpr facts about{"nondeterministic",
                               VQS_ENGINE_NONDETERMINISTIC,
                               1,
                               word_kind::signed32,
                               word_scale::signed32,
                               true,
                               skip_form::none,
                               false,
                               false};
  using record = vqs_nondeterministic_record;
  using word = std::uint32_t;
  static constexpr std::uint32_t raw(word w) { return w; }
};

} // namespace hvl::engines
