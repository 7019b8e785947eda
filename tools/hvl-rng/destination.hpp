// Where output goes: a file, a pipe, standard output.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace hvl_rng {

// Thrown when whoever read our output has closed it; the end of the work, not an error.
struct closed_pipe {};

// Where numbers, tables and pictures go: the file of this name, or standard output for "" and "-".
//
// A file is written beside the old one and takes its name when it is closed, so that nothing is lost when the
// work fails or is interrupted; a device or a named pipe is written as it stands. Standard output is taken over,
// once: what else the process prints there from then on, such as traces, goes to standard error.
class destination {
 public:
  explicit destination(const std::string& name);
  ~destination();
  destination(const destination&) = delete;
  destination& operator=(const destination&) = delete;

  bool is_terminal() const;

  // Whether a file appears only when this is closed.
  bool is_beside() const { return !beside_.empty(); }

  // Throws `closed_pipe`, or `failure` with the system's reason.
  void write(const void* bytes, std::size_t count);

  // Closing may be when the system reports that writing failed.
  void close();

 private:
  destination() = default;

  void open_beside();
  [[noreturn]] void fail(int reason, const char* what = "") const;

  std::string name_;   // for messages
  std::string target_; // the file that is replaced, links followed
  std::string beside_; // what it is replaced by; empty when that is done, or where there is none
  int descriptor_ = -1;
};

// Writes all of it; quiet when the reader closes.
void write_output(const std::string& name, std::string_view text);

} // namespace hvl_rng
