// H. Niederreiter, "Low-discrepancy and low-dispersion sequences", Journal of Number Theory 30 (1988), in base 2 as
// P. Bratley, B. L. Fox, H. Niederreiter, "Implementation and tests of low-discrepancy sequences", ACM Transactions on
// Modeling and Computer Simulation 2 (1992) have it.
#pragma once

#include "hvl/engines/digital_sequence.hpp"

namespace hvl::engines {

struct niederreiter : digital_sequence {
  static constexpr facts about{"niederreiter",
                               VQS_ENGINE_NIEDERREITER,
                               1,
                               word_kind::unsigned32,
                               word_scale::unsigned32,
                               false,
                               skip_form::by_number,
                               false,
                               true,
                               true};
  // All irreducible polynomials up to degree 15.
  static constexpr std::uint32_t most_dimensions = 4720;
};

} // namespace hvl::engines
