#include "destination.hpp"

#include "failure.hpp"
#include "on_signal.hpp"

#include <fmt/format.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace hvl_rng {
namespace {

// Whether the name leads to what this descriptor is open on, as /dev/stdout does.
bool is_open_as(const std::string& name, int descriptor) {
  struct stat named {};
  struct stat open {};
  return ::stat(name.c_str(), &named) == 0 && ::fstat(descriptor, &open) == 0 &&
         named.st_dev == open.st_dev && named.st_ino == open.st_ino;
}

int copy_of(int descriptor) {
  return ::fcntl(descriptor, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
}

int take_standard_output() {
  const int taken = copy_of(STDOUT_FILENO);
  if (taken >= 0)
    ::dup2(STDERR_FILENO, STDOUT_FILENO);
  return taken;
}

// What writing to this name would change.
std::filesystem::path follow_links(std::filesystem::path path) {
  constexpr int most_links = 40;
  std::error_code failed;
  for (int links = 0; links != most_links && std::filesystem::is_symlink(path, failed); ++links)
    path = path.parent_path() / std::filesystem::read_symlink(path, failed);
  return path;
}

} // namespace

// Once the other constructor is done the destructor runs, even when this one throws.
destination::destination(const std::string& name) : destination() {
  namespace fs = std::filesystem;
  const bool is_named = !name.empty() && name != "-";
  name_ = is_named ? "--output " + name : "standard output";
  if (!is_named || is_open_as(name, STDOUT_FILENO)) {
    descriptor_ = take_standard_output();
  } else if (is_open_as(name, STDERR_FILENO)) {
    descriptor_ = copy_of(STDERR_FILENO);
  } else {
    const fs::path target = follow_links(name);
    std::error_code failed;
    const fs::file_type type = fs::status(target, failed).type();
    target_ = target.string();
    if (type == fs::file_type::regular || type == fs::file_type::not_found)
      open_beside();
    else
      descriptor_ = ::open(target_.c_str(), O_WRONLY | O_CLOEXEC);
  }
  if (descriptor_ < 0)
    fail(errno);
}

destination::~destination() {
  if (descriptor_ >= 0)
    ::close(descriptor_);
  if (is_beside()) {
    ::unlink(beside_.c_str());
    remove_on_signal(nullptr);
  }
}

void destination::open_beside() {
  struct stat old {};
  const bool exists = ::stat(target_.c_str(), &old) == 0;
  if (exists && ::access(target_.c_str(), W_OK) != 0)
    return;
  // A short name: the file's own may be as long as the system allows.
  const std::filesystem::path folder = std::filesystem::path(target_).parent_path();
  for (int attempt = 0; descriptor_ < 0; ++attempt) {
    beside_ = folder / fmt::format(".hvl-rng-{}-{}", ::getpid(), attempt);
    remove_on_signal(beside_.c_str());
    descriptor_ = ::open(beside_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (descriptor_ < 0 && errno != EEXIST)
      fail(errno, "no file can be made in its folder: ");
  }
  if (exists && ::fchmod(descriptor_, old.st_mode & 07777) != 0)
    fail(errno);
}

void destination::fail(int reason, const char* what) const {
  throw failure(exit_status::output, fmt::format("{}: {}{}", name_, what, std::strerror(reason)));
}

bool destination::is_terminal() const {
  return ::isatty(descriptor_) == 1;
}

void destination::write(const void* bytes, std::size_t count) {
  const char* next = static_cast<const char*>(bytes);
  while (count != 0) {
    const ssize_t written = ::write(descriptor_, next, count);
    if (written >= 0) {
      next += written;
      count -= static_cast<std::size_t>(written);
    } else if (errno == EPIPE) {
      throw closed_pipe();
    } else if (errno != EINTR) {
      fail(errno);
    }
  }
}

void destination::close() {
  const int descriptor = std::exchange(descriptor_, -1);
  if (::close(descriptor) != 0)
    fail(errno);
  if (is_beside()) {
    if (std::rename(beside_.c_str(), target_.c_str()) != 0)
      fail(errno);
    remove_on_signal(nullptr);
    beside_.clear();
  }
}

void write_output(const std::string& name, std::string_view text) {
  try {
    destination to(name);
    to.write(text.data(), text.size());
    to.close();
  } catch (const closed_pipe&) {
    // Whoever reads has enough.
  }
}

} // namespace hvl_rng
