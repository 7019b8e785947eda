// The engines of hvl/engines.def.
#pragma once

#include "hvl/engines/ars5.hpp"
#include "hvl/engines/mcg31m1.hpp"
#include "hvl/engines/mcg59.hpp"
#include "hvl/engines/mrg32k3a.hpp"
#include "hvl/engines/mt19937.hpp"
#include "hvl/engines/mt2203.hpp"
#include "hvl/engines/niederreiter.hpp"
#include "hvl/engines/philox4x32x10.hpp"
#include "hvl/engines/r250.hpp"
#include "hvl/engines/sfmt19937.hpp"
#include "hvl/engines/sobol.hpp"
#include "hvl/engines/wichmann_hill.hpp"
