// Uniform values to values of every distribution: one definition for the host's vectors and for kernels.
#pragma once

#include "transforms/beta.hpp"
#include "transforms/binomial_rejection.hpp"
#include "transforms/gamma.hpp"
#include "transforms/gaussian.hpp"
#include "transforms/gaussian_mv.hpp"
#include "transforms/geometric.hpp"
#include "transforms/hypergeometric_rejection.hpp"
#include "transforms/inverse_cdf.hpp"
#include "transforms/lognormal.hpp"
#include "transforms/multinomial.hpp"
#include "transforms/negative_binomial.hpp"
#include "transforms/poisson_rejection.hpp"
#include "transforms/poisson_v.hpp"
#include "transforms/thresholds.hpp"
#include "transforms/words.hpp"
