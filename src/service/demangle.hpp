#pragma once

#include <cstdlib>
#include <memory>
#include <typeinfo>

namespace kestro::hvl::gpu {

/// The name of a type as it stands in source code. Owns the text.
class demangle {
 public:
  explicit demangle(const std::type_info& type);

  const char* c_str() const noexcept { return text_ ? text_.get() : mangled_; }

 private:
  struct free_text {
    void operator()(char* text) const noexcept { std::free(text); }
  };

  const char* mangled_; // what is left when the platform cannot demangle
  std::unique_ptr<char, free_text> text_;
};

} // namespace kestro::hvl::gpu
