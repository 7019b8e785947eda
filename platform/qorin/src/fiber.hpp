// A stack to run code on that can be left in the middle and resumed; told to the sanitizers.
#pragma once

#include <boost/context/detail/fcontext.hpp>
#include <boost/context/stack_context.hpp>

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
  static void enter(boost::context::detail::transfer_t from);
  void run_bodies();
  void switch_inside();
  void switch_outside();
  void arrive_inside(boost::context::detail::transfer_t from);

  std::function<void()> body_;
  boost::context::stack_context stack_;
  boost::context::detail::fcontext_t inside_ = nullptr;
  boost::context::detail::fcontext_t outside_ = nullptr;
  bool ended_ = true;
  bool quit_ = false;

  // What the sanitizers want remembered.
  [[maybe_unused]] const void* outer_bottom_ = nullptr;
  [[maybe_unused]] std::size_t outer_bytes_ = 0;
  [[maybe_unused]] void* fake_inside_ = nullptr;
  [[maybe_unused]] void* tsan_inside_ = nullptr;
  [[maybe_unused]] void* tsan_outside_ = nullptr;
};

} // namespace sycl::detail
