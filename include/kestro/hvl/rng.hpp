#pragma once

/// The whole public interface of the library.

#include "exceptions.hpp"
#include "rng/distributions.hpp"
#include "rng/engines.hpp"
#include "rng/functions.hpp"
