// What a kernel computes with: numbers, vectors, builtin functions, pointers into address spaces, atomics.
#pragma once

#include <sycl/address_space.hpp>
#include <sycl/aliases.hpp>
#include <sycl/atomic_ref.hpp>
#include <sycl/bit_cast.hpp>
#include <sycl/builtins.hpp>
#include <sycl/half.hpp>
#include <sycl/marray.hpp>
#include <sycl/memory_order.hpp>
#include <sycl/multi_ptr.hpp>
#include <sycl/vec.hpp>
