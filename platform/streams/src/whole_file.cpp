#include "whole_file.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include "hvl/streams.h"

namespace hvl::streams {
namespace {

class descriptor {
 public:
  explicit descriptor(int fd) noexcept : fd_(fd) {}
  descriptor(const descriptor&) = delete;
  descriptor& operator=(const descriptor&) = delete;
  ~descriptor() { close(); }

  int get() const noexcept { return fd_; }
  bool close() noexcept {
    const int fd = fd_;
    fd_ = -1;
    return fd < 0 || ::close(fd) == 0;
  }

 private:
  int fd_;
};

bool write_all(int fd, std::span<const std::uint8_t> bytes) noexcept {
  while (!bytes.empty()) {
    const ssize_t written = ::write(fd, bytes.data(), bytes.size());
    if (written < 0) {
      if (errno == EINTR)
        continue;
      return false;
    }
    bytes = bytes.subspan(static_cast<std::size_t>(written));
  }
  return true;
}

int write_in_place(const char* file_name, std::span<const std::uint8_t> bytes) {
  descriptor file(::open(file_name, O_WRONLY | O_CLOEXEC | O_NOCTTY));
  if (file.get() < 0)
    return VQS_STATUS_FILE_OPEN;
  return write_all(file.get(), bytes) && file.close() ? VQS_STATUS_OK : VQS_STATUS_FILE_WRITE;
}

// The file that a chain of symbolic links ends at, so that a rename does not replace a link.
std::string resolved(const char* file_name) {
  const std::unique_ptr<char, decltype(&std::free)> real(::realpath(file_name, nullptr), &std::free);
  return real ? real.get() : file_name;
}

std::string temporary_name(const std::string& target) {
  static std::atomic<unsigned> serial{0};
  return target + ".tmp-" + std::to_string(::getpid()) + "-" + std::to_string(serial++);
}

void sync_folder_of(const std::string& path) noexcept {
  const std::size_t slash = path.rfind('/');
  const std::string folder = slash == std::string::npos ? "." : path.substr(0, slash + 1);
  const descriptor fd(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (fd.get() >= 0)
    ::fsync(fd.get());
}

} // namespace

int write_whole_file(const char* file_name, std::span<const std::uint8_t> bytes) {
  struct stat existing {};
  const bool exists = ::stat(file_name, &existing) == 0;
  if (exists && !S_ISREG(existing.st_mode))
    return write_in_place(file_name, bytes);
  const mode_t mode = exists ? existing.st_mode & 07777 : 0666;

  const std::string target = resolved(file_name);
  const std::string temporary = temporary_name(target);
  descriptor file(::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode));
  if (file.get() < 0)
    return VQS_STATUS_FILE_OPEN;
  const bool written = write_all(file.get(), bytes) && (!exists || ::fchmod(file.get(), mode) == 0) &&
                       ::fsync(file.get()) == 0 && file.close() &&
                       std::rename(temporary.c_str(), target.c_str()) == 0;
  if (!written) {
    ::unlink(temporary.c_str());
    return VQS_STATUS_FILE_WRITE;
  }
  sync_folder_of(target);
  return VQS_STATUS_OK;
}

int read_whole_file(const char* file_name, std::size_t most, std::vector<std::uint8_t>& bytes) {
  const descriptor file(::open(file_name, O_RDONLY | O_CLOEXEC | O_NOCTTY));
  if (file.get() < 0)
    return VQS_STATUS_FILE_OPEN;
  bytes.resize(most + 1);
  std::size_t size = 0;
  while (size < bytes.size()) {
    const ssize_t got = ::read(file.get(), bytes.data() + size, bytes.size() - size);
    if (got < 0 && errno == EINTR)
      continue;
    if (got < 0)
      return VQS_STATUS_FILE_READ;
    if (got == 0)
      break;
    size += static_cast<std::size_t>(got);
  }
  bytes.resize(size);
  return VQS_STATUS_OK;
}

} // namespace hvl::streams
