// I. M. Sobol', "On the distribution of points in a cube and the approximate evaluation of integrals", USSR Computational
// Mathematics and Mathematical Physics 7 (1967), with the direction numbers of S. Joe and F. Y. Kuo (2008).
#pragma once

#include "hvl/engines/digital_sequence.hpp"

namespace hvl::engines {

struct sobol : digital_sequence {
  static constexpr facts about{"sobol",
                               VQS_ENGINE_SOBOL,
                               1,
                               word_kind::unsigned32,
                               word_scale::unsigned32,
                               false,
                               skip_form::by_number,
                               false,
                               true,
                               true};
  static constexpr std::uint32_t most_dimensions = 21201;
};

} // namespace hvl::engines
