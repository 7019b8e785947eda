#include "gnuplot.hpp"

#include "failure.hpp"

#include <fmt/format.h>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <spawn.h>
#include <string_view>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

extern char** environ;

namespace hvl_rng {
namespace {

[[noreturn]] void fail(int reason) {
  if (reason == ENOENT)
    throw failure(exit_status::failed,
                  "gnuplot is missing: a picture needs the program (Debian package gnuplot-nox)");
  throw failure(exit_status::failed, fmt::format("gnuplot cannot be run: {}", std::strerror(reason)));
}

class pipe_pair {
 public:
  pipe_pair() {
    if (::pipe2(ends_, O_CLOEXEC) != 0)
      fail(errno);
  }
  ~pipe_pair() {
    close(0);
    close(1);
  }
  pipe_pair(const pipe_pair&) = delete;
  pipe_pair& operator=(const pipe_pair&) = delete;

  int reader() const { return ends_[0]; }
  int writer() const { return ends_[1]; }

  void close(int end) {
    if (ends_[end] >= 0)
      ::close(std::exchange(ends_[end], -1));
  }

 private:
  int ends_[2];
};

pid_t spawn(const pipe_pair& to, const pipe_pair& from) {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, to.reader(), STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&actions, from.writer(), STDOUT_FILENO);
  char name[] = "gnuplot";
  char* words[] = {name, nullptr};
  pid_t process = 0;
  const int reason = ::posix_spawnp(&process, name, &actions, nullptr, words, environ);
  posix_spawn_file_actions_destroy(&actions);
  if (reason != 0)
    fail(reason);
  return process;
}

// A gnuplot that stopped reading has failed; its status tells.
void write_all(int to, const std::string& text) {
  for (std::size_t done = 0; done < text.size();) {
    const ssize_t written = ::write(to, text.data() + done, text.size() - done);
    if (written < 0 && errno != EINTR)
      return;
    done += static_cast<std::size_t>(written < 0 ? 0 : written);
  }
}

std::string read_all(int from) {
  std::string text;
  char block[4096];
  for (;;) {
    const ssize_t read = ::read(from, block, sizeof block);
    if (read == 0 || (read < 0 && errno != EINTR))
      return text;
    text.append(block, static_cast<std::size_t>(read < 0 ? 0 : read));
  }
}

} // namespace

std::string picture_terminal(const std::string& file) {
  const std::string_view name = file;
  if (name.ends_with(".svg"))
    return "svg size 720,440 dynamic noenhanced font 'sans-serif,13' background '#ffffff'";
  if (name.ends_with(".png"))
    return "pngcairo size 960,600 noenhanced font 'sans,13'";
  throw failure(exit_status::usage, fmt::format("--output {}: the suffix is neither .svg nor .png", file));
}

std::string run_gnuplot(const std::string& script) {
  pipe_pair to, from;
  const pid_t process = spawn(to, from);
  to.close(0);
  from.close(1);
  // Neither side waits for the other: nothing is drawn before the script's last command has been read.
  write_all(to.writer(), script);
  to.close(1);
  std::string drawn = read_all(from.reader());

  int status = 0;
  while (::waitpid(process, &status, 0) < 0)
    if (errno != EINTR)
      fail(errno);
  if (!WIFEXITED(status) || WEXITSTATUS(status) != 0 || drawn.empty())
    throw failure(exit_status::failed, "gnuplot failed");
  return drawn;
}

} // namespace hvl_rng
