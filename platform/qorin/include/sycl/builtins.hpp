// All builtin functions, for scalars, vecs, swizzles of vecs and marrays.
#pragma once

#include <sycl/builtins/common.hpp>
#include <sycl/builtins/geometric.hpp>
#include <sycl/builtins/integer.hpp>
#include <sycl/builtins/math.hpp>
#include <sycl/builtins/math_results.hpp>
#include <sycl/builtins/native.hpp>
#include <sycl/builtins/relational.hpp>

// The lists that the files above are written with end here.
#undef QORIN_FLOATING_1
#undef QORIN_FLOATING_2
#undef QORIN_FLOATING_3
#undef QORIN_FLOATING_1_SCALAR
