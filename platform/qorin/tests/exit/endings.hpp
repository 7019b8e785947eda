// Runs a program many times on a busy machine and tells how it ended.
#pragma once

#include <atomic>
#include <cstdio>
#include <map>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <vector>

/// How often each ending was seen: "status: what was printed".
using endings = std::map<std::string, int>;

/// Keeps the processors busy, so that threads are interrupted anywhere.
class busy_machine {
 public:
  busy_machine() {
    for (unsigned i = 0; i < std::thread::hardware_concurrency(); ++i)
      threads_.emplace_back([this] {
        while (!over_.load(std::memory_order_relaxed))
          ;
      });
  }
  busy_machine(const busy_machine&) = delete;
  busy_machine& operator=(const busy_machine&) = delete;
  ~busy_machine() {
    over_ = true;
    for (std::thread& thread : threads_)
      thread.join();
  }

 private:
  std::atomic<bool> over_{false};
  std::vector<std::thread> threads_;
};

inline endings endings_of(const std::string& command, int runs) {
  constexpr int at_once = 4;
  const busy_machine busy;
  endings seen;
  for (int run = 0; run < runs; run += at_once) {
    FILE* pipes[at_once];
    for (FILE*& pipe : pipes)
      pipe = ::popen((command + " 2>&1").c_str(), "r");
    for (FILE* pipe : pipes) {
      std::string output;
      for (int next = std::fgetc(pipe); next != EOF; next = std::fgetc(pipe))
        output += static_cast<char>(next);
      ++seen[std::to_string(WEXITSTATUS(::pclose(pipe))) + ": " + output];
    }
  }
  return seen;
}
