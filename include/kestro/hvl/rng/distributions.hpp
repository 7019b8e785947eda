#pragma once

/// A distribution is a checked value: its constructor refuses bad parameters with `invalid_argument`, naming
/// the parameter, and `generate` turns an engine's words into values of it. `result_type` is the type of
/// those values; where there is a choice of algorithm, the method is a tag type.

#include "distributions/bernoulli.hpp"
#include "distributions/beta.hpp"
#include "distributions/binomial.hpp"
#include "distributions/chi_square.hpp"
#include "distributions/gamma.hpp"
#include "distributions/gaussian.hpp"
#include "distributions/gaussian_mv.hpp"
#include "distributions/geometric.hpp"
#include "distributions/hypergeometric.hpp"
#include "distributions/inverse_cdf.hpp"
#include "distributions/multinomial.hpp"
#include "distributions/negative_binomial.hpp"
#include "distributions/poisson.hpp"
#include "distributions/poisson_v.hpp"
#include "distributions/uniform.hpp"
