// Uniform values to values of every distribution: one definition for the host's vectors and for kernels.
#pragma once

#include "transforms/gamma.hpp"
#include "transforms/gaussian.hpp"
#include "transforms/geometric.hpp"
#include "transforms/inverse_cdf.hpp"
#include "transforms/lognormal.hpp"
#include "transforms/thresholds.hpp"
#include "transforms/words.hpp"
