// What every header of the runtime shares: symbol visibility.
#pragma once

#include <cstddef>
#include <cstdint>

/// Marks what the shared library offers to headers and callers; everything else in it is hidden.
#define QORIN_EXPORT __attribute__((visibility("default")))
