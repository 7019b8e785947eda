#pragma once

#include <cstdint>

namespace kestro::hvl::rng::test {

/// While it lives, `operator new` serves this thread so many times and then throws; in every library of the process.
class failing_new {
 public:
  explicit failing_new(std::int64_t allocations);
  failing_new(const failing_new&) = delete;
  failing_new& operator=(const failing_new&) = delete;
  ~failing_new();
};

} // namespace kestro::hvl::rng::test
