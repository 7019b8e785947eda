// What is printed is read by programs: the same in every locale.
#pragma once

#include <locale.h>

namespace hvl::core {

// The calling thread formats in the C locale while one lives, whatever the program has set.
class c_locale_scope {
 public:
  c_locale_scope() noexcept : before_(::uselocale(c_locale())) {}
  ~c_locale_scope() { ::uselocale(before_); }
  c_locale_scope(const c_locale_scope&) = delete;
  c_locale_scope& operator=(const c_locale_scope&) = delete;

 private:
  // Never freed: a clean-up at exit may still print.
  static locale_t c_locale() noexcept {
    static const locale_t instance = ::newlocale(LC_ALL_MASK, "C", nullptr);
    return instance;
  }

  locale_t before_;
};

} // namespace hvl::core
