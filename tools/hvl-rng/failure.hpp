// What ends the program early, and with which exit status.
#pragma once

#include <stdexcept>
#include <string>

namespace hvl_rng {

enum class exit_status : int {
  success = 0,
  failed = 1,      // anything not named below
  usage = 2,       // an option is unknown, missing or has a refused value
  device = 3,      // no such device, or the device failed
  output = 4,      // the output could not be written
  unsupported = 5, // the library does not offer this engine with this distribution
};

class failure : public std::runtime_error {
 public:
  failure(exit_status status, const std::string& message) : std::runtime_error(message), status_(status) {}

  exit_status status() const noexcept { return status_; }

 private:
  exit_status status_;
};

} // namespace hvl_rng
