// A stack to run code on that can be left in the middle and resumed; told to the sanitizers.
#pragma once

#include <boost/context/fiber.hpp>

#include <functional>

namespace sycl::detail {

/// Reusable: when `body` has ended, the next resume runs it from its beginning on the same stack.
class fiber {
 public:
  /// Thrown by `suspend` when the fiber is destroyed while its body is suspended. The body lets it pass.
  struct unwound {};

  explicit fiber(std::function<void()> body);
  fiber(const fiber&) = delete;
  fiber& operator=(const fiber&) = delete;
  /// A suspended body is unwound.
  ~fiber();

  /// From outside: runs the body, or goes on with it, until it suspends or ends.
  void resume();
  /// From inside: back to whoever resumed.
  void suspend();
  bool ended() const noexcept { return ended_; }

 private:
  void run_until_quit();
  void before_switch(bool to_inside) noexcept;
  void after_switch(bool inside) noexcept;

  std::function<void()> body_;
  boost::context::fiber inside_;
  boost::context::fiber outside_;
  bool ended_ = true;
  bool quit_ = false;

  // What the sanitizers want remembered.
  void* stack_bottom_ = nullptr;
  std::size_t stack_bytes_ = 0;
  const void* outer_bottom_ = nullptr;
  std::size_t outer_bytes_ = 0;
  void* fake_inside_ = nullptr;
  void* fake_outside_ = nullptr;
  void* tsan_inside_ = nullptr;
  void* tsan_outside_ = nullptr;
};

} // namespace sycl::detail
