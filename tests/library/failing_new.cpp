#include "failing_new.hpp"

#include <cstdlib>
#include <new>

namespace kestro::hvl::rng::test {
namespace {

thread_local std::int64_t allocations_left = -1; // none fails

} // namespace

failing_new::failing_new(std::int64_t allocations) {
  allocations_left = allocations;
}
failing_new::~failing_new() {
  allocations_left = -1;
}

} // namespace kestro::hvl::rng::test

void* operator new(std::size_t bytes) {
  using kestro::hvl::rng::test::allocations_left;
  if (allocations_left == 0)
    throw std::bad_alloc();
  if (allocations_left > 0)
    --allocations_left;
  if (void* const memory = std::malloc(bytes != 0 ? bytes : 1))
    return memory;
  throw std::bad_alloc();
}
void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}
