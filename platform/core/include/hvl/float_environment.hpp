// The floating-point environment that numbers are made in, whatever the caller's is.
#pragma once

#include <immintrin.h>

#include <cfenv>

namespace hvl {

/// While it lives, its thread rounds to nearest, keeps denormal numbers and traps nothing; then the caller's environment
/// holds again, flags included. In the default environment, the usual one, it costs two reads of a register.
///
/// What computes belongs into a function that is called while this lives and is not inlined there: compilers may move
/// arithmetic past a change of the environment.
class default_float_environment {
 public:
  default_float_environment() noexcept : changed_(!is_default()) {
    if (changed_) {
      std::fegetenv(&callers_);
      std::fesetenv(FE_DFL_ENV);
    }
  }
  default_float_environment(const default_float_environment&) = delete;
  default_float_environment& operator=(const default_float_environment&) = delete;
  ~default_float_environment() {
    if (changed_)
      std::fesetenv(&callers_);
  }

 private:
  /// The vector unit's control bits, and those of the unit that computes `long double`; flags do not count.
  static bool is_default() noexcept {
    constexpr unsigned vector_flags = 0x3f, vector_default = 0x1f80;
    constexpr unsigned short unused_bits = 0xf0c0, extended_default = 0x033f;
    unsigned short extended;
    asm volatile("fnstcw %0" : "=m"(extended));
    return (_mm_getcsr() & ~vector_flags) == vector_default && (extended & ~unused_bits) == extended_default;
  }

  const bool changed_;
  std::fenv_t callers_;
};

} // namespace hvl
