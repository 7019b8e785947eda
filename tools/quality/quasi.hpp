// How even the points of a quasi-random engine are, which is what they are for instead of being random.
#pragma once

#include <string>
#include <vector>

#include "hvl/engines/facts.hpp"

namespace quality {

struct measure {
  std::string name;
  double value;
  double limit; // the greatest good value
};

// Of the engine's first points and of later ones:
//   net:          the least t with which 2^m points are a (t, m, s)-net in base 2; the limit follows from the polynomials
//   discrepancy:  the L2 star discrepancy as a part of its root mean square for random points
//   integral:     the error of a mean over the cube as a part of the standard deviation that Monte Carlo has
std::vector<measure> quasi_measures(const hvl::engines::facts& engine);

// The parts, for points one after the other, `dimensions` words each.
unsigned net_parameter(const std::vector<std::uint32_t>& points, unsigned dimensions);
double relative_discrepancy(const std::vector<std::uint32_t>& points, unsigned dimensions);
double relative_integration_error(const std::vector<std::uint32_t>& points, unsigned dimensions);

} // namespace quality
