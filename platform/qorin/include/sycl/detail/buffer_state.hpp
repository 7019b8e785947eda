// The memory behind a buffer and its sub-buffers, and its place in the graph of commands.
#pragma once

#include <sycl/access.hpp>

#include <functional>
#include <memory>
#include <mutex>

namespace sycl::detail {

class command;
class context_state;
struct buffer_users;

using buffer_allocation = std::function<std::shared_ptr<void>(std::size_t bytes)>;

class QORIN_EXPORT buffer_state : public std::enable_shared_from_this<buffer_state> {
 public:
  /// `host` is the caller's memory, used directly and kept alive by `keep`; null for a buffer with memory of its
  /// own, which `allocate` provides at the first use. Of the properties, use_mutex and context_bound count.
  buffer_state(std::size_t bytes, buffer_allocation allocate, void* host, std::shared_ptr<void> keep,
               const property_list& properties);
  buffer_state(const buffer_state&) = delete;
  buffer_state& operator=(const buffer_state&) = delete;
  ~buffer_state();

  std::size_t bytes() const noexcept { return bytes_; }
  /// Throws errc::memory_allocation.
  void* data();

  /// Where the contents go at the end; an empty function for nowhere. Memory given at construction is left as it
  /// is from now on.
  void set_final_copy(std::function<void(const void*)> copy);
  void set_write_back(bool enabled);

  /// Waits for every command that uses the buffer, then writes back. Called when the last handle goes.
  void finish();

  buffer_users& users() noexcept { return *users_; }
  /// Null where the property was not given.
  std::mutex* mutex() const noexcept { return mutex_; }
  const std::shared_ptr<context_state>& bound_to() const noexcept { return bound_to_; }

 private:
  void detach_from_host();

  const std::size_t bytes_;
  buffer_allocation allocate_;
  void* host_;
  std::shared_ptr<void> memory_;
  std::function<void(const void*)> final_copy_;
  bool write_back_ = true;
  std::unique_ptr<buffer_users> users_;
  std::mutex* mutex_ = nullptr;
  std::shared_ptr<context_state> bound_to_;
};

/// What all copies of a buffer handle share. The last of them to go ends the buffer, unless it is a sub-buffer,
/// which keeps its parent alive instead.
class QORIN_EXPORT buffer_owner {
 public:
  explicit buffer_owner(std::shared_ptr<buffer_state> memory) : memory_(std::move(memory)) {}
  explicit buffer_owner(std::shared_ptr<buffer_owner> parent)
      : memory_(parent->memory_), parent_(std::move(parent)) {}
  buffer_owner(const buffer_owner&) = delete;
  buffer_owner& operator=(const buffer_owner&) = delete;
  ~buffer_owner() {
    if (!parent_)
      memory_->finish();
  }

  const std::shared_ptr<buffer_state>& memory() const noexcept { return memory_; }

 private:
  std::shared_ptr<buffer_state> memory_;
  std::shared_ptr<buffer_owner> parent_;
};

} // namespace sycl::detail
