// The states behind the handles: platforms, devices, contexts, queues.
//
// `native` holds what a state was made from when it was made from another runtime's objects, retained; null otherwise.
#pragma once

#include "command.hpp"
#include "errors.hpp"
#include "limits.hpp"

#include <sycl/queue.hpp>

#include <algorithm>
#include <functional>
#include <optional>

namespace sycl::detail {

class platform_state : public std::enable_shared_from_this<platform_state> {
 public:
  backend kind = backend::host;
  std::string name;
  std::string vendor = "Kestro";
  std::string version;
  std::vector<std::shared_ptr<device_state>> devices;
  std::function<bool()> visible = [] { return true; };
  std::shared_ptr<void> native;
};

class device_state : public std::enable_shared_from_this<device_state> {
 public:
  info::device_type type = info::device_type::cpu;
  std::string name;
  std::string vendor = "Kestro";
  std::string driver_version;
  std::uint32_t vendor_id = 0;
  std::uint32_t compute_units = std::max(1u, std::thread::hardware_concurrency());
  std::size_t work_group_size = largest_work_group;
  std::vector<aspect> aspects;
  std::weak_ptr<platform_state> platform;
  std::shared_ptr<context_state> default_context; // made by the first queue that is given none
  std::shared_ptr<void> native;

  backend kind() const { return platform.lock()->kind; }
  bool has(aspect asp) const;
};

/// What every device has because its commands run on the host's threads, and `kind`.
std::vector<aspect> host_thread_aspects(std::initializer_list<aspect> kind);

/// The platforms of this process, made once, visible or not.
const std::vector<std::shared_ptr<platform_state>>& known_platforms();

class context_state : public std::enable_shared_from_this<context_state> {
 public:
  std::vector<device> devices;
  async_handler handler;
  property_list properties;
  std::shared_ptr<void> native;
};

class buffer_state;

/// What a command group recorded.
struct recording {
  std::unique_ptr<work> action;
  std::vector<std::shared_ptr<command>> dependencies;
  std::vector<std::pair<std::shared_ptr<buffer_state>, access_mode>> requests;
  std::size_t local_bytes = 0;
};

/// Another runtime's queue that a queue was made from.
class native_queue {
 public:
  native_queue() = default;
  native_queue(const native_queue&) = delete;
  native_queue& operator=(const native_queue&) = delete;
  virtual ~native_queue() = default;
  /// Enters `c`, which is still recording and waits for nothing yet, into the native queue's order. Calls follow each
  /// other in the order of submission.
  virtual void enter(command& c, const std::shared_ptr<error_sink>& errors) = 0;
};

class queue_state : public std::enable_shared_from_this<queue_state> {
 public:
  queue_state(device dev, context ctx, async_handler handler, property_list properties);

  std::shared_ptr<command> submit(recording&& group);
  void wait();
  /// Called by each command of the queue when it is complete.
  void forget(command& c) noexcept;

  const device where;
  const context ctx;
  const property_list properties;
  const bool in_order;
  const bool profiled;
  const std::shared_ptr<error_sink> errors;
  std::unique_ptr<native_queue> native; // set before the first submission

 private:
  std::mutex mutex_;
  std::shared_ptr<command> latest_; // of an in-order queue
  command* first_ = nullptr;        // incomplete commands of an out-of-order queue, oldest first
  command* last_ = nullptr;
  std::uint64_t submitted_ = 0;
};

} // namespace sycl::detail
