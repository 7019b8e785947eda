// What sees to it that commands never outlive what they use.
#pragma once

#include <sycl/detail/config.hpp>

namespace sycl::detail {

/// Has commands stopped at exit, before static objects that exist now are destroyed. Keeps the library that `inside`
/// points into loaded until then: commands have their code there, and often their memory.
QORIN_EXPORT bool register_user(const void* inside) noexcept;

/// Called wherever a program or library meets commands; the first time, hence after the making of most static objects
/// that commands use, it registers. Hidden, so that each library has its own.
__attribute__((visibility("hidden"))) inline void note_use() noexcept {
  static const bool noted = register_user(&noted);
  (void)noted;
}

} // namespace sycl::detail
