#include "on_signal.hpp"

#include <atomic>
#include <csignal>
#include <unistd.h>

namespace {

std::atomic<const char*> file_to_remove{nullptr};
std::atomic<bool> line_is_open{false};

// Only what a signal handler may do.
extern "C" void tidy_up(int signal) {
  if (const char* const file = file_to_remove.load())
    ::unlink(file);
  if (line_is_open.load() && ::write(STDERR_FILENO, "\n", 1) < 0) {
    // Nobody is left to tell.
  }
  std::raise(signal); // SA_RESETHAND has put the default action back, which ends the program
}

} // namespace

namespace hvl_rng {

void tidy_up_on_signals() {
  struct sigaction wanted {};
  wanted.sa_handler = tidy_up;
  wanted.sa_flags = static_cast<int>(SA_RESETHAND);
  for (int signal : {SIGINT, SIGTERM, SIGHUP}) {
    struct sigaction before {};
    if (::sigaction(signal, nullptr, &before) == 0 && before.sa_handler == SIG_DFL)
      ::sigaction(signal, &wanted, nullptr);
  }
}

void remove_on_signal(const char* file) {
  file_to_remove.store(file);
}

void end_line_on_signal(bool needed) {
  line_is_open.store(needed);
}

} // namespace hvl_rng
