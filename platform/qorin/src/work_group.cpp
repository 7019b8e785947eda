// Work-groups on one thread each.
//
// Most kernels never wait, and for them a group is a plain loop over its items. Whether a kernel waits shows at
// run time: the first group of a launch, and the first item of every group, run carefully, on a fiber that can be
// suspended at a meeting while another fiber goes on with the next item. When they met nobody, the rest of a group
// runs as one loop that the compiler may have vectorised. A group-wide meeting in that loop would mean that the
// first item passed it by, which SYCL forbids.
#include "fiber.hpp"
#include "limits.hpp"
#include "run_adaptively.hpp"

#include <sycl/detail/group_kernel.hpp>
#include <sycl/exception.hpp>

#include <algorithm>
#include <atomic>
#include <exception>
#include <memory>
#include <new>
#include <vector>

namespace sycl::detail {

namespace {

thread_local char* current_local_memory = nullptr;

/// The launch all groups belong to.
struct launch_state {
  group_function run;
  const void* launch;
  group_shape shape;
  std::atomic<bool> careful{true}; // until the first group has shown that the kernel does not wait
};

/// Where members meet: counts arrivals, one round after the other.
struct meeting_place {
  std::vector<void*> brought;
  std::size_t arrived = 0;
  std::size_t round = 0;
};

class group_runner final : public work_group {
 public:
  void prepare(const group_shape& shape);
  /// Whether items of the group have met.
  bool run(launch_state& launch, std::ptrdiff_t group);

  void meet(meeting_place& place, std::size_t member, void* brought, meeting_action action,
            const void* context);
  meeting_place& whole_group() noexcept { return whole_group_; }
  meeting_place& sub_group(std::size_t number) noexcept { return sub_groups_[number]; }

 private:
  struct strand {
    explicit strand(group_runner& runner) : stack([&runner] { runner.run_items(); }) {}
    fiber stack;
    const meeting_place* waits_at = nullptr;
    std::size_t waits_in_round = 0;
  };

  void run_items();
  void call(std::ptrdiff_t first, std::ptrdiff_t last);
  void resume(strand& s);
  void finish_waiting();

  launch_state* launch_ = nullptr;
  std::ptrdiff_t group_ = 0;
  std::ptrdiff_t items_ = 0;
  std::ptrdiff_t next_item_ = 0;
  bool met_ = false;      // some item of this group has been at a meeting
  bool straight_ = false; // in the plain loop
  strand* current_ = nullptr;
  std::exception_ptr error_;

  meeting_place whole_group_;
  std::vector<meeting_place> sub_groups_;
  std::vector<std::unique_ptr<strand>> strands_; // the first `busy_` have items of this group
  std::size_t busy_ = 0;
  std::vector<std::max_align_t> local_memory_;
};

void group_runner::prepare(const group_shape& shape) {
  items_ = static_cast<std::ptrdiff_t>(shape.items);
  whole_group_ = {std::vector<void*>(shape.items), 0, 0};
  const std::size_t sub_groups = (shape.items + sub_group_size - 1) / sub_group_size;
  sub_groups_.resize(sub_groups);
  for (std::size_t s = 0; s < sub_groups; ++s)
    sub_groups_[s] = {std::vector<void*>(std::min(sub_group_size, shape.items - s * sub_group_size)), 0, 0};
  local_memory_.resize((shape.local_bytes + sizeof(std::max_align_t) - 1) / sizeof(std::max_align_t));
}

bool group_runner::run(launch_state& launch, std::ptrdiff_t group) {
  launch_ = &launch;
  group_ = group;
  next_item_ = 0;
  met_ = false;
  busy_ = 0;
  current_local_memory = reinterpret_cast<char*>(local_memory_.data());
  while (next_item_ < items_ && !error_) {
    if (busy_ == strands_.size())
      strands_.push_back(std::make_unique<strand>(*this));
    resume(*strands_[busy_++]);
  }
  if (!error_)
    finish_waiting();
  current_local_memory = nullptr;
  if (error_) {
    strands_.clear(); // suspended items are unwound
    std::rethrow_exception(std::exchange(error_, nullptr));
  }
  return met_;
}

/// What each fiber runs: the items that no other fiber has begun.
void group_runner::run_items() {
  try {
    while (next_item_ < items_) {
      if (next_item_ == 1 && !met_ && !launch_->careful.load(std::memory_order_relaxed)) {
        next_item_ = items_;
        straight_ = true;
        call(1, items_);
        straight_ = false;
        return;
      }
      const std::ptrdiff_t item = next_item_++;
      call(item, item + 1);
    }
  } catch (const fiber::unwound&) {
    throw;
  } catch (...) {
    straight_ = false;
    error_ = std::current_exception();
  }
}

void group_runner::call(std::ptrdiff_t first, std::ptrdiff_t last) {
  launch_->run(launch_->launch, *this, group_, first, last);
}

void group_runner::resume(strand& s) {
  current_ = &s;
  s.waits_at = nullptr;
  s.stack.resume();
  current_ = nullptr;
}

/// Goes round the suspended items until all have ended.
void group_runner::finish_waiting() {
  for (bool waiting = true; waiting;) {
    waiting = false;
    bool progress = false;
    for (std::size_t i = 0; i < busy_ && !error_; ++i) {
      strand& s = *strands_[i];
      if (s.stack.ended())
        continue;
      waiting = true;
      if (s.waits_at->round != s.waits_in_round) {
        progress = true;
        resume(s);
      }
    }
    if (error_)
      return;
    if (waiting && !progress)
      error_ = std::make_exception_ptr(
          exception(make_error_code(errc::kernel),
                    "items of a group wait at a barrier or group function that others passed by"));
  }
}

void group_runner::meet(meeting_place& place, std::size_t member, void* brought, meeting_action action,
                        const void* context) {
  met_ = true;
  place.brought[member] = brought;
  if (++place.arrived == place.brought.size()) {
    if (action != nullptr)
      action(place.brought.data(), place.brought.size(), context);
    place.arrived = 0;
    ++place.round;
    return;
  }
  if (straight_)
    throw exception(
        make_error_code(errc::kernel),
        "a barrier or group function that the first item of the group, and the first group, passed by");
  strand& here = *current_;
  here.waits_at = &place;
  here.waits_in_round = place.round;
  here.stack.suspend();
  current_ = &here;
}

/// The runner of this thread, kept for its stacks; a second one when the first is in use, or when the thread has
/// destroyed its objects, as the main thread has while static objects are destroyed.
class borrowed_runner {
 public:
  borrowed_runner() : runner_(std::exchange(kept, nullptr)) {
    if (!runner_)
      runner_ = std::make_unique<group_runner>();
  }
  borrowed_runner(const borrowed_runner&) = delete;
  borrowed_runner& operator=(const borrowed_runner&) = delete;
  ~borrowed_runner() {
    thread_local const end_of_thread end;
    if (!ended && kept == nullptr)
      kept = runner_.release();
  }
  group_runner& operator*() const { return *runner_; }

 private:
  struct end_of_thread {
    end_of_thread() noexcept {}
    ~end_of_thread() {
      ended = true;
      delete kept;
    }
  };
  static inline thread_local group_runner* kept = nullptr;
  static inline thread_local bool ended = false;

  std::unique_ptr<group_runner> runner_;
};

} // namespace

void work_group::meet_group(std::size_t member, void* brought, meeting_action action, const void* context) {
  auto& runner = static_cast<group_runner&>(*this);
  runner.meet(runner.whole_group(), member, brought, action, context);
}

void work_group::meet_sub_group(std::size_t sub_group, std::size_t member, void* brought,
                                meeting_action action, const void* context) {
  auto& runner = static_cast<group_runner&>(*this);
  runner.meet(runner.sub_group(sub_group), member, brought, action, context);
}

char* local_memory() noexcept {
  return current_local_memory;
}

void check_groups(const range<3>& global, const range<3>& local, bool at_origin) {
  if (!at_origin)
    throw exception(make_error_code(errc::feature_not_supported), "nd_range: an offset");
  if (local.size() == 0)
    throw exception(make_error_code(errc::nd_range), "nd_range: a work-group of no items");
  if (local.size() > largest_work_group)
    throw exception(make_error_code(errc::nd_range),
                    "nd_range: a work-group larger than max_work_group_size");
  for (int d = 0; d < 3; ++d)
    if (global[d] % local[d] != 0)
      throw exception(make_error_code(errc::nd_range),
                      "nd_range: the global range is not a multiple of the work-group's");
}

void run_groups(const group_functions& functions, const void* launch, const group_shape& shape) {
  launch_state state{chosen(functions), launch, shape};
  run_adaptively(static_cast<std::ptrdiff_t>(shape.groups), 1, [&](std::ptrdiff_t begin, std::ptrdiff_t end) {
    const borrowed_runner runner;
    (*runner).prepare(shape);
    for (std::ptrdiff_t group = begin; group < end; ++group) {
      const bool met = (*runner).run(state, group);
      if (group == 0 && !met) // ran alone, before any other
        state.careful.store(false, std::memory_order_relaxed);
    }
  });
}

} // namespace sycl::detail
