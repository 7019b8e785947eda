#include "whole_file.hpp"

#include <fcntl.h>
#include <limits.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <string>
#include <string_view>

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

// What a failed open means.
int open_status() noexcept {
  switch (errno) {
  case ENOENT:
  case ENOTDIR:
    return VQS_STATUS_FILE_MISSING;
  case EACCES:
  case EPERM:
  case EROFS:
    return VQS_STATUS_FILE_PERMISSION;
  default:
    return VQS_STATUS_FILE_OPEN;
  }
}

int read_all(int fd, std::size_t most, std::vector<std::uint8_t>& bytes) {
  bytes.resize(most);
  std::size_t size = 0;
  while (size < bytes.size()) {
    const ssize_t got = ::read(fd, bytes.data() + size, bytes.size() - size);
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

// A pipe or a device.
int write_through(int fd, std::span<const std::uint8_t> bytes) noexcept {
  return write_all(fd, bytes) ? VQS_STATUS_OK : VQS_STATUS_FILE_WRITE;
}

// The size last, so that what is behind the new content stays until that is written.
bool replace_content(int fd, std::span<const std::uint8_t> bytes, off_t size) noexcept {
  return ::lseek(fd, 0, SEEK_SET) == 0 && write_all(fd, bytes) && ::fsync(fd) == 0 &&
         ::ftruncate(fd, size) == 0;
}

// For a file beside which none may be made.
int overwrite(const std::string& target, off_t size, std::span<const std::uint8_t> bytes) {
  const descriptor file(::open(target.c_str(), O_RDWR | O_CLOEXEC));
  if (file.get() < 0)
    return open_status();
  std::vector<std::uint8_t> before;
  if (const int status = read_all(file.get(), bytes.size(), before); status != 0)
    return status;
  if (replace_content(file.get(), bytes, static_cast<off_t>(bytes.size())))
    return VQS_STATUS_OK;
  static_cast<void>(replace_content(file.get(), before, size)); // into blocks that it had before
  return VQS_STATUS_FILE_WRITE;
}

// The file that a chain of symbolic links ends at, whether it is there or not, so that a rename does not replace a link.
std::string resolved(std::string path) {
  for (int links = 0; links < 40; ++links) {
    char target[PATH_MAX];
    const ssize_t length = ::readlink(path.c_str(), target, sizeof target);
    if (length < 0)
      break;
    const std::string_view to(target, static_cast<std::size_t>(length));
    path = to.starts_with('/') ? std::string(to) : path.substr(0, path.rfind('/') + 1).append(to);
  }
  return path;
}

// Beside the target, under a name that is never longer than a file system takes. Whatever a process that was killed has
// left behind keeps its name.
descriptor create_temporary(const std::string& target, mode_t mode, std::string& name) {
  static std::atomic<unsigned> serial{0};
  const std::size_t start = target.rfind('/') + 1;
  const std::string stem =
      target.substr(0, start) + target.substr(start, 200) + ".tmp-" + std::to_string(::getpid());
  int fd;
  do {
    name = stem + "-" + std::to_string(serial++);
    fd = ::open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
  } while (fd < 0 && errno == EEXIST);
  return descriptor(fd);
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
  // Opening tells what a rename would pass over: a file that may not be written.
  const descriptor old(::open(file_name, O_WRONLY | O_CLOEXEC | O_NOCTTY));
  const bool exists = old.get() >= 0;
  if (!exists && errno != ENOENT)
    return open_status();
  struct stat existing {};
  if (exists && ::fstat(old.get(), &existing) != 0)
    return VQS_STATUS_FILE_OPEN;
  if (exists && !S_ISREG(existing.st_mode))
    return write_through(old.get(), bytes);

  const std::string target = resolved(file_name);
  const mode_t mode = exists ? existing.st_mode & 07777 : 0666;
  std::string temporary;
  descriptor file = create_temporary(target, mode, temporary);
  if (file.get() < 0) {
    const int status = open_status();
    return exists && status == VQS_STATUS_FILE_PERMISSION ? overwrite(target, existing.st_size, bytes)
                                                          : status;
  }
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
  return file.get() < 0 ? open_status() : read_all(file.get(), most + 1, bytes);
}

} // namespace hvl::streams
