#include "fiber.hpp"

#include <boost/context/protected_fixedsize_stack.hpp>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/common_interface_defs.h>
#endif
#if defined(__SANITIZE_THREAD__)
#include <sanitizer/tsan_interface.h>
#endif

namespace sycl::detail {

namespace {

// For the private arrays of a kernel; pages are taken as they are touched.
constexpr std::size_t stack_size = std::size_t{256} << 10;

} // namespace

fiber::fiber(std::function<void()> body) : body_(std::move(body)) {
  boost::context::protected_fixedsize_stack allocator(stack_size);
  const boost::context::stack_context stack = allocator.allocate();
  stack_bottom_ = static_cast<char*>(stack.sp) - stack.size;
  stack_bytes_ = stack.size;
#if defined(__SANITIZE_THREAD__)
  tsan_inside_ = __tsan_create_fiber(0);
#endif
  inside_ =
      boost::context::fiber(std::allocator_arg, boost::context::preallocated(stack.sp, stack.size, stack),
                            allocator, [this](boost::context::fiber&& outside) {
                              outside_ = std::move(outside);
                              after_switch(true);
                              run_until_quit();
                              before_switch(false);
                              return std::move(outside_);
                            });
}

fiber::~fiber() {
  quit_ = true;
  resume();
#if defined(__SANITIZE_THREAD__)
  __tsan_destroy_fiber(tsan_inside_);
#endif
}

void fiber::run_until_quit() {
  try {
    while (!quit_) {
      body_();
      ended_ = true;
      suspend();
    }
  } catch (const unwound&) {
  }
}

void fiber::resume() {
  ended_ = false;
  before_switch(true);
  inside_ = std::move(inside_).resume();
  after_switch(false);
}

void fiber::suspend() {
  before_switch(false);
  outside_ = std::move(outside_).resume();
  after_switch(true);
  if (quit_)
    throw unwound();
}

void fiber::before_switch([[maybe_unused]] bool to_inside) noexcept {
#if defined(__SANITIZE_ADDRESS__)
  if (to_inside)
    __sanitizer_start_switch_fiber(&fake_outside_, stack_bottom_, stack_bytes_);
  else
    __sanitizer_start_switch_fiber(quit_ ? nullptr : &fake_inside_, outer_bottom_, outer_bytes_);
#endif
#if defined(__SANITIZE_THREAD__)
  if (to_inside)
    tsan_outside_ = __tsan_get_current_fiber();
  __tsan_switch_to_fiber(to_inside ? tsan_inside_ : tsan_outside_, 0);
#endif
}

void fiber::after_switch([[maybe_unused]] bool inside) noexcept {
#if defined(__SANITIZE_ADDRESS__)
  if (inside)
    __sanitizer_finish_switch_fiber(fake_inside_, &outer_bottom_, &outer_bytes_);
  else
    __sanitizer_finish_switch_fiber(fake_outside_, nullptr, nullptr);
#endif
}

} // namespace sycl::detail
