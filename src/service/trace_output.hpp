#pragma once

#include <cstddef>
#include <string>

namespace kestro::hvl::gpu {

/// What hvl_serv_sprintf_char_s appends to: at most 399 characters, longer text is cut.
struct bounded_text {
  static constexpr std::size_t capacity = 399;

  char characters[capacity + 1] = {};
  char* cursor = characters;
  std::size_t room = capacity;
};

/// Writes a piece of the trace, whole: to the trace file, or to standard output when there is none or, with a
/// warning each time, when it cannot be opened.
void write_trace(const std::string& text);

} // namespace kestro::hvl::gpu
