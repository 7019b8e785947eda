#pragma once

#include <cstdint>
#include <exception>

namespace kestro::hvl::rng::detail::openmp {

/// Prints the one line that tells of an exception to standard error.
void report(const std::exception_ptr& caught) noexcept;

/// The protected region of an offload call. An exception is kept until everything that `work` holds has been
/// released; it is then reported and becomes the status -2.
template <class Work>
std::int32_t catch_and_report(const Work& work) noexcept {
  std::exception_ptr caught;
  try {
    work();
    return 0;
  } catch (...) {
    caught = std::current_exception();
  }
  report(caught);
  return -2;
}

} // namespace kestro::hvl::rng::detail::openmp
