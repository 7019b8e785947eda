// Distributions from what Python calls give.
#pragma once

#include "tools/hvl-rng/any_engine.hpp"

#include <pybind11/pybind11.h>

#include <cstddef>

namespace kestro::python {

// The distribution at this place of the list; a parameter that is not given has the default of the class.
hvl_rng::any_distribution make_distribution(std::size_t index, const pybind11::dict& parameters);

} // namespace kestro::python
