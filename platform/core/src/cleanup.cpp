// Functions to call when this library goes.
#include <hvl/core.h>

#include <algorithm>
#include <mutex>
#include <vector>

namespace {

class cleanup_registry {
 public:
  using function = void (*)();

  // Each function is taken out before it runs, outside the lock: it may register and unregister.
  ~cleanup_registry() {
    while (const function next = take_last())
      next();
  }

  void add(function wanted) {
    const std::lock_guard lock(mutex_);
    if (std::find(functions_.begin(), functions_.end(), wanted) == functions_.end())
      functions_.push_back(wanted);
  }

  void remove(function unwanted) noexcept {
    const std::lock_guard lock(mutex_);
    std::erase(functions_, unwanted);
  }

 private:
  function take_last() noexcept {
    const std::lock_guard lock(mutex_);
    if (functions_.empty())
      return nullptr;
    const function last = functions_.back();
    functions_.pop_back();
    return last;
  }

  std::mutex mutex_;
  std::vector<function> functions_;
};

cleanup_registry registry;

} // namespace

void hvl_serv_core_register_sycl_destructor(void (*function)(void)) {
  if (function != nullptr)
    registry.add(function);
}

void hvl_serv_core_unregister_sycl_destructor(void (*function)(void)) {
  registry.remove(function);
}
