// Bounded texts: appending to a buffer, reading the environment.
#include <hvl/core.h>

#include "c_locale.hpp"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

int hvl_serv_sprintf_char_s(char** cursor, size_t* room, const char* format, ...) {
  if (cursor == nullptr || *cursor == nullptr || room == nullptr || format == nullptr)
    return HVL_SERV_BAD_ARGUMENT;
  const hvl::core::c_locale_scope scope;
  std::va_list arguments;
  va_start(arguments, format);
  const int length = std::vsnprintf(*cursor, *room + 1, format, arguments);
  va_end(arguments);
  if (length < 0) {
    **cursor = '\0';
    return HVL_SERV_BAD_ARGUMENT;
  }
  const std::size_t appended = std::min(static_cast<std::size_t>(length), *room);
  *cursor += appended;
  *room -= appended;
  return static_cast<int>(appended);
}

int hvl_serv_getenv(const char* name, char* buffer, size_t buffer_bytes) {
  const bool has_buffer = buffer != nullptr && buffer_bytes != 0;
  if (has_buffer)
    buffer[0] = '\0';
  const char* value = name == nullptr ? nullptr : std::getenv(name);
  if (value == nullptr)
    return -1;
  const std::size_t length = std::strlen(value);
  if (has_buffer) {
    const std::size_t copied = std::min(length, buffer_bytes - 1);
    std::memcpy(buffer, value, copied);
    buffer[copied] = '\0';
  }
  return static_cast<int>(length);
}
