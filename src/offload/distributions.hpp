#pragma once

/// Every distribution that the library can generate.
#include "distributions/bernoulli.hpp"
#include "distributions/beta.hpp"
#include "distributions/binomial.hpp"
#include "distributions/bits.hpp"
#include "distributions/gamma.hpp"
#include "distributions/gaussian.hpp"
#include "distributions/geometric.hpp"
#include "distributions/inverse_cdf.hpp"
#include "distributions/lognormal.hpp"
#include "distributions/poisson.hpp"
#include "distributions/poisson_v.hpp"
#include "distributions/uniform.hpp"
