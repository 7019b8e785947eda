#include "line.hpp"

#include "c_locale.hpp"

#include <cerrno>
#include <cstdlib>
#include <memory>
#include <poll.h>
#include <unistd.h>

namespace hvl::core {
namespace {

struct free_memory {
  void operator()(char* text) const noexcept { std::free(text); }
};

// One write in the usual case; more only where the system takes a part (a full pipe, a signal).
bool write_all(int descriptor, const char* text, std::size_t bytes) noexcept {
  while (bytes != 0) {
    const ssize_t written = ::write(descriptor, text, bytes);
    if (written >= 0) {
      text += written;
      bytes -= static_cast<std::size_t>(written);
    } else if (errno == EAGAIN) {
      pollfd ready{descriptor, POLLOUT, 0};
      ::poll(&ready, 1, -1);
    } else if (errno != EINTR) {
      return false;
    }
  }
  return true;
}

// A stream without a descriptor (memory streams) has only its buffer.
bool write_locked(FILE* file, const char* text, std::size_t bytes) noexcept {
  const int descriptor = ::fileno(file);
  if (descriptor < 0)
    return std::fwrite(text, 1, bytes, file) == bytes;
  return std::fflush(file) == 0 && write_all(descriptor, text, bytes);
}

} // namespace

int write_text(FILE* file, const char* format, std::va_list arguments) noexcept {
  if (file == nullptr || format == nullptr)
    return HVL_SERV_BAD_ARGUMENT;
  char* formatted = nullptr;
  const int length = [&] {
    const c_locale_scope scope;
    return ::vasprintf(&formatted, format, arguments);
  }();
  if (length < 0)
    return HVL_SERV_BAD_ARGUMENT;
  const std::unique_ptr<char, free_memory> text(formatted);
  ::flockfile(file);
  const bool written = write_locked(file, text.get(), static_cast<std::size_t>(length));
  ::funlockfile(file);
  return written ? length : HVL_SERV_IO_ERROR;
}

FILE* stream_of(int kind) noexcept {
  return kind == HVL_SERV_PRINT_WARNING ? stderr : stdout;
}

} // namespace hvl::core

FILE* hvl_serv_fopen(const char* name, const char* mode) {
  if (name == nullptr || mode == nullptr)
    return nullptr;
  char with_close_on_exec[16];
  const int length = std::snprintf(with_close_on_exec, sizeof with_close_on_exec, "%se", mode);
  if (length >= static_cast<int>(sizeof with_close_on_exec))
    return nullptr;
  return std::fopen(name, with_close_on_exec);
}

int hvl_serv_fclose(FILE* file) {
  return file == nullptr ? HVL_SERV_BAD_ARGUMENT : std::fclose(file);
}

int hvl_serv_fprintf_s(FILE* file, const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  const int written = hvl::core::write_text(file, format, arguments);
  va_end(arguments);
  return written;
}

int hvl_serv_print_text(int kind, const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  const int written = hvl::core::write_text(hvl::core::stream_of(kind), format, arguments);
  va_end(arguments);
  return written;
}
