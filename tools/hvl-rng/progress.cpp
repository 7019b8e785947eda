#include "progress.hpp"

#include "on_signal.hpp"

#include <fmt/format.h>

#include <cstdio>

namespace hvl_rng {

using namespace std::chrono_literals;

progress::progress(bool shown, std::uint64_t total) : shown_(shown), total_(total), next_(start_ + 500ms) {}

progress::~progress() {
  constexpr const char* erase_line = "\r\033[K";
  if (!drawn_)
    return;
  end_line_on_signal(false);
  fmt::print(stderr, "{}", erase_line);
}

void progress::update(std::uint64_t done) {
  const clock::time_point now = clock::now();
  if (!shown_ || now < next_)
    return;
  next_ = now + 100ms;
  drawn_ = true;
  end_line_on_signal(true);
  const double millions_a_second =
      static_cast<double>(done) * 1e-6 / std::chrono::duration<double>(now - start_).count();
  if (total_ == 0) {
    fmt::print(stderr, "\r{} numbers, {:.0f} million/s \033[K", done, millions_a_second);
  } else {
    constexpr int width = 40;
    const double part = static_cast<double>(done) / static_cast<double>(total_);
    const int filled = static_cast<int>(part * width);
    fmt::print(stderr, "\r[{:#>{}}{:.>{}}] {:3.0f} %, {:.0f} million/s \033[K", "", filled, "",
               width - filled, 100 * part, millions_a_second);
  }
  std::fflush(stderr);
}

} // namespace hvl_rng
