#pragma once

/// Every distribution that the library can generate.
#include "distributions/bits.hpp"
#include "distributions/uniform.hpp"
#include <kestro/hvl/rng/distributions.hpp>
