// The groups of benchmarks of this program.
#pragma once

#include "sizes.hpp"

namespace bench {

void register_distributions();
void register_distribution_peers();

} // namespace bench
