// Uniform values to values of every continuous distribution: one definition for the host's vectors and for kernels.
#pragma once

#include "transforms/gaussian.hpp"
#include "transforms/inverse_cdf.hpp"
#include "transforms/lognormal.hpp"
#include "transforms/words.hpp"
