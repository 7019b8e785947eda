// Limits of allocations.
#pragma once

#include <cstddef>

namespace sycl::detail {

/// The most bytes one allocation may have: QORIN_ALLOCATION_LIMIT of the environment, read at each call, else no limit.
std::size_t allocation_limit();

} // namespace sycl::detail
