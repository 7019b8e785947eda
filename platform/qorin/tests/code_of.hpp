#pragma once

#include <sycl/sycl.hpp>

// The code of the exception that f throws, or success.
template <class F>
std::error_code code_of(const F& f) {
  try {
    f();
  } catch (const sycl::exception& e) {
    return e.code();
  }
  return make_error_code(sycl::errc::success);
}
