// Writing values to a file or a pipe: raw, as text, or as a NumPy array.
#pragma once

#include "catalogue.hpp"

#include <cstdint>
#include <memory>
#include <string>

namespace hvl_rng {

enum class output_format { raw, text, npy };

// Thrown when whoever read our output has closed it; the end of the work, not an error.
struct closed_pipe {};

// An open descriptor: the file of this name, or standard output for "" and "-".
class destination {
 public:
  explicit destination(const std::string& name);
  ~destination();
  destination(const destination&) = delete;
  destination& operator=(const destination&) = delete;

  bool is_terminal() const;

  // Throws `closed_pipe`, or `failure` with the system's reason.
  void write(const void* bytes, std::size_t count);

  // Closing may be when the system reports that writing failed.
  void close();

 private:
  std::string name_;
  int descriptor_;
};

class value_writer {
 public:
  virtual ~value_writer() = default;

  virtual void write(const void* values, std::size_t count) = 0;
};

// `count` values will be written; only npy needs the number beforehand.
std::unique_ptr<value_writer> make_writer(destination& to, output_format format, value_type type,
                                          std::uint64_t count);

} // namespace hvl_rng
