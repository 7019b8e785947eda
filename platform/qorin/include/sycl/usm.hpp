// Unified shared memory: allocations that host and devices address alike. All kinds are host memory here.
#pragma once

#include <sycl/context.hpp>

#include <new>

namespace sycl {

class queue;

namespace usm {
enum class alloc : int { host, device, shared, unknown };
} // namespace usm

/// Null when the memory cannot be had, and for 0 bytes. An alignment of 0 means one that suits every type. A request of
/// more bytes than the machine has, or than QORIN_ALLOCATION_LIMIT (an environment variable, read at each call), fails.
QORIN_EXPORT void* malloc_device(std::size_t bytes, const device& dev, const context& ctx,
                                 const property_list& properties = {});
QORIN_EXPORT void* malloc_host(std::size_t bytes, const context& ctx, const property_list& properties = {});
QORIN_EXPORT void* malloc_shared(std::size_t bytes, const device& dev, const context& ctx,
                                 const property_list& properties = {});
QORIN_EXPORT void* malloc(std::size_t bytes, const device& dev, const context& ctx, usm::alloc kind,
                          const property_list& properties = {});
QORIN_EXPORT void* aligned_alloc_device(std::size_t alignment, std::size_t bytes, const device& dev,
                                        const context& ctx, const property_list& properties = {});
QORIN_EXPORT void* aligned_alloc_host(std::size_t alignment, std::size_t bytes, const context& ctx,
                                      const property_list& properties = {});
QORIN_EXPORT void* aligned_alloc_shared(std::size_t alignment, std::size_t bytes, const device& dev,
                                        const context& ctx, const property_list& properties = {});
QORIN_EXPORT void* aligned_alloc(std::size_t alignment, std::size_t bytes, const device& dev,
                                 const context& ctx, usm::alloc kind, const property_list& properties = {});

QORIN_EXPORT void* malloc_device(std::size_t bytes, const queue& q, const property_list& properties = {});
QORIN_EXPORT void* malloc_host(std::size_t bytes, const queue& q, const property_list& properties = {});
QORIN_EXPORT void* malloc_shared(std::size_t bytes, const queue& q, const property_list& properties = {});
QORIN_EXPORT void* malloc(std::size_t bytes, const queue& q, usm::alloc kind,
                          const property_list& properties = {});
QORIN_EXPORT void* aligned_alloc_device(std::size_t alignment, std::size_t bytes, const queue& q,
                                        const property_list& properties = {});
QORIN_EXPORT void* aligned_alloc_host(std::size_t alignment, std::size_t bytes, const queue& q,
                                      const property_list& properties = {});
QORIN_EXPORT void* aligned_alloc_shared(std::size_t alignment, std::size_t bytes, const queue& q,
                                        const property_list& properties = {});
QORIN_EXPORT void* aligned_alloc(std::size_t alignment, std::size_t bytes, const queue& q, usm::alloc kind,
                                 const property_list& properties = {});

/// The memory must come from the same context; null does nothing. Throws errc::invalid for other pointers.
QORIN_EXPORT void free(void* memory, const context& ctx);
QORIN_EXPORT void free(void* memory, const queue& q);

/// `unknown` for pointers that are not within an allocation of this context.
QORIN_EXPORT usm::alloc get_pointer_type(const void* memory, const context& ctx);
/// Throws errc::invalid for pointers that are not within an allocation of this context.
QORIN_EXPORT device get_pointer_device(const void* memory, const context& ctx);

namespace detail {
/// Bytes of `count` objects of `size` bytes; the greatest size there is when that overflows, which then fails.
constexpr std::size_t array_bytes(std::size_t count, std::size_t size) {
  return count > static_cast<std::size_t>(-1) / size ? static_cast<std::size_t>(-1) : count * size;
}
constexpr std::size_t larger(std::size_t a, std::size_t b) {
  return a > b ? a : b;
}
} // namespace detail

#define QORIN_USM_TYPED(kind)                                                                                \
  template <class T, class... Where>                                                                         \
  T* malloc_##kind(std::size_t count, const Where&... where) {                                               \
    return static_cast<T*>(                                                                                  \
        aligned_alloc_##kind(alignof(T), detail::array_bytes(count, sizeof(T)), where...));                  \
  }                                                                                                          \
  template <class T, class... Where>                                                                         \
  T* aligned_alloc_##kind(std::size_t alignment, std::size_t count, const Where&... where) {                 \
    return static_cast<T*>(aligned_alloc_##kind(detail::larger(alignment, alignof(T)),                       \
                                                detail::array_bytes(count, sizeof(T)), where...));           \
  }
QORIN_USM_TYPED(device)
QORIN_USM_TYPED(host)
QORIN_USM_TYPED(shared)
#undef QORIN_USM_TYPED

template <class T, class... Where>
T* malloc(std::size_t count, const Where&... where) {
  return static_cast<T*>(aligned_alloc(alignof(T), detail::array_bytes(count, sizeof(T)), where...));
}
template <class T, class... Where>
T* aligned_alloc(std::size_t alignment, std::size_t count, const Where&... where) {
  return static_cast<T*>(
      aligned_alloc(detail::larger(alignment, alignof(T)), detail::array_bytes(count, sizeof(T)), where...));
}

/// A standard allocator of host or shared memory; throws errc::memory_allocation.
template <class T, usm::alloc Kind, std::size_t Alignment = 0>
class usm_allocator {
  static_assert(Kind == usm::alloc::host || Kind == usm::alloc::shared, "memory the host can address");

 public:
  using value_type = T;
  using propagate_on_container_copy_assignment = std::true_type;
  using propagate_on_container_move_assignment = std::true_type;
  using propagate_on_container_swap = std::true_type;
  template <class U>
  struct rebind {
    using other = usm_allocator<U, Kind, Alignment>;
  };

  usm_allocator() = delete;
  usm_allocator(const context& ctx, const device& dev, const property_list& properties = {})
      : context_(ctx), device_(dev), properties_(properties) {}
  usm_allocator(const queue& q, const property_list& properties = {});
  template <class U>
  usm_allocator(const usm_allocator<U, Kind, Alignment>& other) noexcept
      : context_(other.context_), device_(other.device_), properties_(other.properties_) {}

  T* allocate(std::size_t count) {
    void* memory = aligned_alloc(detail::larger(Alignment, alignof(T)), detail::array_bytes(count, sizeof(T)),
                                 device_, context_, Kind, properties_);
    if (memory == nullptr)
      throw exception(context_, make_error_code(errc::memory_allocation), "usm_allocator: no memory");
    return static_cast<T*>(memory);
  }
  void deallocate(T* memory, std::size_t) { free(memory, context_); }

 private:
  template <class, usm::alloc, std::size_t>
  friend class usm_allocator;

  context context_;
  device device_;
  property_list properties_;

  template <class A, usm::alloc KindA, std::size_t AlignmentA, class B, usm::alloc KindB,
            std::size_t AlignmentB>
  friend bool operator==(const usm_allocator<A, KindA, AlignmentA>&,
                         const usm_allocator<B, KindB, AlignmentB>&);
};

template <class A, usm::alloc KindA, std::size_t AlignmentA, class B, usm::alloc KindB,
          std::size_t AlignmentB>
bool operator==(const usm_allocator<A, KindA, AlignmentA>& a, const usm_allocator<B, KindB, AlignmentB>& b) {
  return KindA == KindB && AlignmentA == AlignmentB && a.context_ == b.context_ && a.device_ == b.device_;
}
template <class A, usm::alloc KindA, std::size_t AlignmentA, class B, usm::alloc KindB,
          std::size_t AlignmentB>
bool operator!=(const usm_allocator<A, KindA, AlignmentA>& a, const usm_allocator<B, KindB, AlignmentB>& b) {
  return !(a == b);
}

} // namespace sycl
