// Limits of allocations.
#pragma once

#include <cstddef>
#include <cstdint>

namespace sycl::detail {

/// The most bytes one allocation may have: QORIN_ALLOCATION_LIMIT of the environment, read at each call, else no limit.
std::size_t allocation_limit();

/// Bytes of memory the machine has.
std::uint64_t physical_memory();

} // namespace sycl::detail
