// Writing one formatted text whole.
#pragma once

#include <hvl/core.h>

#include <cstdarg>
#include <cstdio>

namespace hvl::core {

// Formats and writes with a single write(2); returns the bytes written or a negative status.
int write_text(FILE* file, const char* format, std::va_list arguments) noexcept;

// The stream that a kind of print goes to.
FILE* stream_of(int kind) noexcept;

} // namespace hvl::core
