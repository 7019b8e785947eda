// What a command runs: any callable, owned behind one virtual call.
#pragma once

#include <sycl/detail/config.hpp>

#include <memory>
#include <utility>

namespace sycl::detail {

class work {
 public:
  work() = default;
  work(const work&) = delete;
  work& operator=(const work&) = delete;
  virtual ~work() = default;
  virtual void run() = 0;
};

template <class F>
class work_of final : public work {
 public:
  explicit work_of(F f) : f_(std::move(f)) {}
  void run() override { f_(); }

 private:
  F f_;
};

template <class F>
std::unique_ptr<work> make_work(F f) {
  return std::make_unique<work_of<F>>(std::move(f));
}

} // namespace sycl::detail
