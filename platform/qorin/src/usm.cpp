#include "usm_memory.hpp"

#include "objects.hpp"

#include <sycl/usm.hpp>

#include <hvl/core.h>

#include <cstdlib>
#include <limits>
#include <map>
#include <memory>
#include <shared_mutex>

#include <sys/mman.h>
#include <unistd.h>

namespace sycl {

namespace detail {

std::size_t allocation_limit() {
  char text[32];
  if (hvl_serv_getenv("QORIN_ALLOCATION_LIMIT", text, sizeof text) <= 0)
    return std::numeric_limits<std::size_t>::max();
  return std::strtoull(text, nullptr, 0);
}

std::uint64_t physical_memory() {
  return static_cast<std::uint64_t>(sysconf(_SC_PHYS_PAGES)) *
         static_cast<std::uint64_t>(sysconf(_SC_PAGE_SIZE));
}

namespace {

struct allocation {
  std::size_t bytes;
  usm::alloc kind;
  std::shared_ptr<context_state> ctx;
  std::shared_ptr<device_state> where;
};

/// All USM allocations of the process, by address.
class allocation_table {
 public:
  static allocation_table& instance() {
    static allocation_table* const one = new allocation_table; // outlives static objects that free
    return *one;
  }

  void add(void* memory, allocation what) {
    const std::unique_lock lock(mutex_);
    table_.emplace(memory, std::move(what));
  }
  bool remove(void* memory, const std::shared_ptr<context_state>& ctx) {
    const std::unique_lock lock(mutex_);
    const auto found = table_.find(memory);
    if (found == table_.end() || found->second.ctx != ctx)
      return false;
    table_.erase(found);
    return true;
  }
  /// The allocation that contains the address.
  std::optional<allocation> find(const void* address, const std::shared_ptr<context_state>& ctx) const {
    const std::shared_lock lock(mutex_);
    auto above = table_.upper_bound(const_cast<void*>(address));
    if (above == table_.begin())
      return std::nullopt;
    --above;
    const auto distance =
        static_cast<std::size_t>(static_cast<const char*>(address) - static_cast<const char*>(above->first));
    if (distance >= above->second.bytes || above->second.ctx != ctx)
      return std::nullopt;
    return above->second;
  }

 private:
  mutable std::shared_mutex mutex_;
  std::map<void*, allocation, std::less<>> table_;
};

constexpr std::size_t default_alignment = 64;
constexpr std::size_t huge_page = std::size_t{2} << 20;

void* allocate(std::size_t alignment, std::size_t bytes, const context& ctx, const device* dev,
               usm::alloc kind) {
  if (alignment == 0)
    alignment = default_alignment;
  const bool power_of_two = (alignment & (alignment - 1)) == 0;
  if (bytes == 0 || !power_of_two || bytes > allocation_limit() || kind == usm::alloc::unknown ||
      bytes > physical_memory())
    return nullptr;
  if (dev != nullptr) {
    bool member = false;
    for (const device& d : ctx.get_devices())
      member = member || d == *dev;
    if (!member)
      throw exception(ctx, make_error_code(errc::invalid), "USM: the device is not one of the context's");
  }
  alignment = larger(alignment, bytes >= 2 * huge_page ? huge_page : default_alignment);
  const std::size_t rounded = (bytes + alignment - 1) / alignment * alignment;
  const auto release = [](void* address) { std::free(address); };
  std::unique_ptr<void, decltype(release)> memory(std::aligned_alloc(alignment, rounded), release);
  if (!memory)
    return nullptr;
  if (alignment >= huge_page)
    madvise(memory.get(), rounded, MADV_HUGEPAGE); // a hint: fewer page faults at the first touch
  const device first = dev != nullptr ? *dev : ctx.get_devices().front();
  allocation_table::instance().add(memory.get(),
                                   {bytes, kind, handle_access::state(ctx), handle_access::state(first)});
  return memory.release();
}

} // namespace
} // namespace detail

void* aligned_alloc_device(std::size_t alignment, std::size_t bytes, const device& dev, const context& ctx,
                           const property_list&) {
  return detail::allocate(alignment, bytes, ctx, &dev, usm::alloc::device);
}
void* aligned_alloc_host(std::size_t alignment, std::size_t bytes, const context& ctx, const property_list&) {
  return detail::allocate(alignment, bytes, ctx, nullptr, usm::alloc::host);
}
void* aligned_alloc_shared(std::size_t alignment, std::size_t bytes, const device& dev, const context& ctx,
                           const property_list&) {
  return detail::allocate(alignment, bytes, ctx, &dev, usm::alloc::shared);
}
void* aligned_alloc(std::size_t alignment, std::size_t bytes, const device& dev, const context& ctx,
                    usm::alloc kind, const property_list&) {
  return detail::allocate(alignment, bytes, ctx, kind == usm::alloc::host ? nullptr : &dev, kind);
}

void* malloc_device(std::size_t bytes, const device& dev, const context& ctx,
                    const property_list& properties) {
  return aligned_alloc_device(0, bytes, dev, ctx, properties);
}
void* malloc_host(std::size_t bytes, const context& ctx, const property_list& properties) {
  return aligned_alloc_host(0, bytes, ctx, properties);
}
void* malloc_shared(std::size_t bytes, const device& dev, const context& ctx,
                    const property_list& properties) {
  return aligned_alloc_shared(0, bytes, dev, ctx, properties);
}
void* malloc(std::size_t bytes, const device& dev, const context& ctx, usm::alloc kind,
             const property_list& properties) {
  return aligned_alloc(0, bytes, dev, ctx, kind, properties);
}

void* malloc_device(std::size_t bytes, const queue& q, const property_list& properties) {
  return aligned_alloc_device(0, bytes, q, properties);
}
void* malloc_host(std::size_t bytes, const queue& q, const property_list& properties) {
  return aligned_alloc_host(0, bytes, q, properties);
}
void* malloc_shared(std::size_t bytes, const queue& q, const property_list& properties) {
  return aligned_alloc_shared(0, bytes, q, properties);
}
void* malloc(std::size_t bytes, const queue& q, usm::alloc kind, const property_list& properties) {
  return aligned_alloc(0, bytes, q, kind, properties);
}
void* aligned_alloc_device(std::size_t alignment, std::size_t bytes, const queue& q,
                           const property_list& properties) {
  return aligned_alloc_device(alignment, bytes, q.get_device(), q.get_context(), properties);
}
void* aligned_alloc_host(std::size_t alignment, std::size_t bytes, const queue& q,
                         const property_list& properties) {
  return aligned_alloc_host(alignment, bytes, q.get_context(), properties);
}
void* aligned_alloc_shared(std::size_t alignment, std::size_t bytes, const queue& q,
                           const property_list& properties) {
  return aligned_alloc_shared(alignment, bytes, q.get_device(), q.get_context(), properties);
}
void* aligned_alloc(std::size_t alignment, std::size_t bytes, const queue& q, usm::alloc kind,
                    const property_list& properties) {
  return aligned_alloc(alignment, bytes, q.get_device(), q.get_context(), kind, properties);
}

void free(void* memory, const context& ctx) {
  if (memory == nullptr)
    return;
  if (!detail::allocation_table::instance().remove(memory, detail::handle_access::state(ctx)))
    throw exception(ctx, make_error_code(errc::invalid), "free: not an allocation of this context");
  std::free(memory);
}
void free(void* memory, const queue& q) {
  free(memory, q.get_context());
}

usm::alloc get_pointer_type(const void* memory, const context& ctx) {
  const auto found = detail::allocation_table::instance().find(memory, detail::handle_access::state(ctx));
  return found ? found->kind : usm::alloc::unknown;
}

device get_pointer_device(const void* memory, const context& ctx) {
  const auto found = detail::allocation_table::instance().find(memory, detail::handle_access::state(ctx));
  if (!found)
    throw exception(ctx, make_error_code(errc::invalid),
                    "get_pointer_device: not an allocation of this context");
  return detail::handle_access::make<device>(found->where);
}

} // namespace sycl
