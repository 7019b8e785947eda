// A progress bar on a terminal.
#pragma once

#include <chrono>
#include <cstdint>

namespace hvl_rng {

// Draws on standard error, once the work has lasted long enough for a person to wonder.
class progress {
 public:
  // `total` 0 means that the end is not known.
  progress(bool shown, std::uint64_t total);
  ~progress();
  progress(const progress&) = delete;
  progress& operator=(const progress&) = delete;

  void update(std::uint64_t done);

 private:
  using clock = std::chrono::steady_clock;

  bool shown_, drawn_ = false;
  std::uint64_t total_;
  clock::time_point start_ = clock::now();
  clock::time_point next_;
};

} // namespace hvl_rng
