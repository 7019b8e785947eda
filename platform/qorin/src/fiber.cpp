#include "fiber.hpp"

#include <boost/context/protected_fixedsize_stack.hpp>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/common_interface_defs.h>
#endif
#if defined(__SANITIZE_THREAD__)
#include <sanitizer/tsan_interface.h>
// A function that is entered on one stack and left on another must not be counted by the sanitizer.
#define QORIN_SWITCHES_STACKS __attribute__((noinline, no_sanitize("thread")))
#else
#define QORIN_SWITCHES_STACKS
#endif

namespace sycl::detail {

namespace {

// For the private arrays of a kernel; pages are taken as they are touched.
constexpr std::size_t stack_bytes = std::size_t{256} << 10;

} // namespace

fiber::fiber(std::function<void()> body)
    : body_(std::move(body)), stack_(boost::context::protected_fixedsize_stack(stack_bytes).allocate()) {
  inside_ = boost::context::detail::make_fcontext(stack_.sp, stack_.size, &fiber::enter);
#if defined(__SANITIZE_THREAD__)
  tsan_inside_ = __tsan_create_fiber(0);
#endif
}

// An idle fiber has nothing on its stack that needs unwinding.
fiber::~fiber() {
  if (!ended_) {
    quit_ = true;
    resume();
  }
#if defined(__SANITIZE_THREAD__)
  __tsan_destroy_fiber(tsan_inside_);
#endif
  boost::context::protected_fixedsize_stack(stack_bytes).deallocate(stack_);
}

QORIN_SWITCHES_STACKS void fiber::enter(boost::context::detail::transfer_t from) {
  auto& self = *static_cast<fiber*>(from.data);
  self.arrive_inside(from);
  self.run_bodies();
}

void fiber::run_bodies() {
  for (;;) {
    try {
      body_();
    } catch (const unwound&) {
    }
    ended_ = true;
    switch_outside();
  }
}

void fiber::resume() {
  ended_ = false;
  switch_inside();
}

void fiber::suspend() {
  switch_outside();
  if (quit_)
    throw unwound();
}

QORIN_SWITCHES_STACKS void fiber::switch_inside() {
#if defined(__SANITIZE_ADDRESS__)
  void* fake_outside = nullptr;
  __sanitizer_start_switch_fiber(&fake_outside, static_cast<char*>(stack_.sp) - stack_.size, stack_.size);
#endif
#if defined(__SANITIZE_THREAD__)
  tsan_outside_ = __tsan_get_current_fiber();
  __tsan_switch_to_fiber(tsan_inside_, 0);
#endif
  inside_ = boost::context::detail::jump_fcontext(inside_, this).fctx;
#if defined(__SANITIZE_ADDRESS__)
  __sanitizer_finish_switch_fiber(fake_outside, nullptr, nullptr);
#endif
}

QORIN_SWITCHES_STACKS void fiber::switch_outside() {
#if defined(__SANITIZE_ADDRESS__)
  __sanitizer_start_switch_fiber(&fake_inside_, outer_bottom_, outer_bytes_);
#endif
#if defined(__SANITIZE_THREAD__)
  __tsan_switch_to_fiber(tsan_outside_, 0);
#endif
  arrive_inside(boost::context::detail::jump_fcontext(outside_, nullptr));
}

QORIN_SWITCHES_STACKS void fiber::arrive_inside(boost::context::detail::transfer_t from) {
  outside_ = from.fctx;
#if defined(__SANITIZE_ADDRESS__)
  __sanitizer_finish_switch_fiber(fake_inside_, &outer_bottom_, &outer_bytes_);
#endif
}

} // namespace sycl::detail
