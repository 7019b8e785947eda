// For tests of what must wait: others get their turn, and a waiting thread is seen to wait, without a clock.
#pragma once

#include <unistd.h>

#include <atomic>
#include <fstream>
#include <string>
#include <thread>

namespace hvl::test {

/// Whether a thread of this process sleeps, as one that waits does.
inline bool is_asleep(pid_t thread) {
  std::ifstream file("/proc/self/task/" + std::to_string(thread) + "/stat");
  std::string text;
  std::getline(file, text);
  const auto name_end = text.rfind(") ");
  return name_end != std::string::npos && text.compare(name_end + 2, 1, "S") == 0;
}

/// Gives the processors away many times: enough for other threads to do what nothing keeps them from.
inline void let_others_run() {
  for (int i = 0; i < 2'000; ++i)
    std::this_thread::yield();
}

/// Calls `open` on a thread of its own as soon as the thread that makes this object stays asleep, at the latest when the
/// object ends or the others have had many turns.
class open_when_waited_for {
 public:
  template <class Open>
  explicit open_when_waited_for(Open open) {
    opener_ = std::thread([this, open, waiting = gettid()] {
      int asleep = 0;
      for (int looks = 0; looks < 20'000 && asleep < 20 && !ended_; ++looks) {
        asleep = is_asleep(waiting) ? asleep + 1 : 0;
        std::this_thread::yield();
      }
      open();
    });
  }
  open_when_waited_for(const open_when_waited_for&) = delete;
  open_when_waited_for& operator=(const open_when_waited_for&) = delete;
  ~open_when_waited_for() {
    ended_ = true;
    opener_.join();
  }

 private:
  std::atomic<bool> ended_{false};
  std::thread opener_;
};

} // namespace hvl::test
