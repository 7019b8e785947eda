// What the vectors of multinomial are made with.
#pragma once

#include <cstddef>
#include <cstdint>

namespace hvl::streams {

struct multinomial_parameters {
  std::int32_t ntrial;
  std::size_t dimension;
  const double* table; // make_multinomial_table's
};

} // namespace hvl::streams
