// sycl::atomic_ref and sycl::atomic_fence.
#pragma once

#include <cstddef>
#include <type_traits>

#include <sycl/address_space.hpp>
#include <sycl/memory_order.hpp>

namespace sycl {

inline void atomic_fence(memory_order order, memory_scope) {
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wpragmas"
#pragma GCC diagnostic ignored "-Wunknown-warning-option"
#pragma GCC diagnostic ignored "-Wtsan" // the thread sanitizer does not model fences
  __atomic_thread_fence(static_cast<int>(order));
#pragma GCC diagnostic pop
}

namespace detail {

/// The order of the load, or of the store, that goes with a read-modify-write of the given order.
constexpr memory_order load_part(memory_order order) {
  return order == memory_order::acq_rel   ? memory_order::acquire
         : order == memory_order::release ? memory_order::relaxed
                                          : order;
}
constexpr memory_order store_part(memory_order order) {
  return order == memory_order::acq_rel ? memory_order::release : order;
}

} // namespace detail

/// Atomic access to an object of the caller's. The object must outlive the reference, and while references to
/// it exist it is reached through them only.
template <typename T, memory_order DefaultOrder, memory_scope DefaultScope,
          access::address_space Space = access::address_space::generic_space>
class atomic_ref {
  static_assert((std::is_arithmetic_v<T> || std::is_pointer_v<T>)&&(sizeof(T) == 4 || sizeof(T) == 8),
                "atomic_ref serves integers, floating-point numbers and pointers of 4 or 8 bytes");
  static_assert(DefaultOrder == memory_order::relaxed || DefaultOrder == memory_order::acq_rel ||
                    DefaultOrder == memory_order::seq_cst,
                "the default order is relaxed, acq_rel or seq_cst");
  static constexpr bool is_integer = std::is_integral_v<T>;
  static constexpr bool is_pointer = std::is_pointer_v<T>;

 public:
  using value_type = T;
  using difference_type = std::conditional_t<is_pointer, std::ptrdiff_t, T>;

  static constexpr std::size_t required_alignment = sizeof(T);
  static constexpr bool is_always_lock_free = true;
  static constexpr memory_order default_read_order = detail::load_part(DefaultOrder);
  static constexpr memory_order default_write_order = detail::store_part(DefaultOrder);
  static constexpr memory_order default_read_modify_write_order = DefaultOrder;
  static constexpr memory_scope default_scope = DefaultScope;

  explicit atomic_ref(T& object) : object_(&object) {}
  atomic_ref(const atomic_ref&) noexcept = default;
  atomic_ref& operator=(const atomic_ref&) = delete;

  bool is_lock_free() const noexcept { return true; }

  void store(T value, memory_order order = default_write_order, memory_scope = default_scope) const noexcept {
    __atomic_store(object_, &value, static_cast<int>(order));
  }
  T operator=(T value) const noexcept {
    store(value);
    return value;
  }
  T load(memory_order order = default_read_order, memory_scope = default_scope) const noexcept {
    T value;
    __atomic_load(object_, &value, static_cast<int>(order));
    return value;
  }
  operator T() const noexcept { return load(); }

  T exchange(T value, memory_order order = default_read_modify_write_order,
             memory_scope = default_scope) const noexcept {
    T before;
    __atomic_exchange(object_, &value, &before, static_cast<int>(order));
    return before;
  }

  bool compare_exchange_weak(T& expected, T desired, memory_order success, memory_order failure,
                             memory_scope = default_scope) const noexcept {
    return __atomic_compare_exchange(object_, &expected, &desired, true, static_cast<int>(success),
                                     static_cast<int>(failure));
  }
  bool compare_exchange_weak(T& expected, T desired, memory_order order = default_read_modify_write_order,
                             memory_scope scope = default_scope) const noexcept {
    return compare_exchange_weak(expected, desired, order, detail::load_part(order), scope);
  }
  bool compare_exchange_strong(T& expected, T desired, memory_order success, memory_order failure,
                               memory_scope = default_scope) const noexcept {
    return __atomic_compare_exchange(object_, &expected, &desired, false, static_cast<int>(success),
                                     static_cast<int>(failure));
  }
  bool compare_exchange_strong(T& expected, T desired, memory_order order = default_read_modify_write_order,
                               memory_scope scope = default_scope) const noexcept {
    return compare_exchange_strong(expected, desired, order, detail::load_part(order), scope);
  }

  T fetch_add(difference_type operand, memory_order order = default_read_modify_write_order,
              memory_scope = default_scope) const noexcept {
    if constexpr (is_integer)
      return __atomic_fetch_add(object_, operand, static_cast<int>(order));
    else
      return update([operand](T value) { return value + operand; }, order);
  }
  T fetch_sub(difference_type operand, memory_order order = default_read_modify_write_order,
              memory_scope = default_scope) const noexcept {
    if constexpr (is_integer)
      return __atomic_fetch_sub(object_, operand, static_cast<int>(order));
    else
      return update([operand](T value) { return value - operand; }, order);
  }
  T operator+=(difference_type operand) const noexcept {
    if constexpr (is_integer)
      return __atomic_add_fetch(object_, operand, static_cast<int>(default_read_modify_write_order));
    else
      return fetch_add(operand) + operand;
  }
  T operator-=(difference_type operand) const noexcept {
    if constexpr (is_integer)
      return __atomic_sub_fetch(object_, operand, static_cast<int>(default_read_modify_write_order));
    else
      return fetch_sub(operand) - operand;
  }
  T operator++() const noexcept { return *this += 1; }
  T operator--() const noexcept { return *this -= 1; }
  T operator++(int) const noexcept { return fetch_add(1); }
  T operator--(int) const noexcept { return fetch_sub(1); }

#define QORIN_BITWISE(name, op)                                                                              \
  T fetch_##name(T operand, memory_order order = default_read_modify_write_order,                            \
                 memory_scope = default_scope) const noexcept {                                              \
    static_assert(is_integer, "fetch_" #name " is for integers");                                            \
    return __atomic_fetch_##name(object_, operand, static_cast<int>(order));                                 \
  }                                                                                                          \
  T operator op##=(T operand) const noexcept {                                                               \
    return fetch_##name(operand) op operand;                                                                 \
  }
  QORIN_BITWISE(and, &)
  QORIN_BITWISE(or, |)
  QORIN_BITWISE(xor, ^)
#undef QORIN_BITWISE

  T fetch_min(T operand, memory_order order = default_read_modify_write_order,
              memory_scope = default_scope) const noexcept {
    static_assert(!is_pointer, "fetch_min is for numbers");
    return update([operand](T value) { return operand < value ? operand : value; }, order);
  }
  T fetch_max(T operand, memory_order order = default_read_modify_write_order,
              memory_scope = default_scope) const noexcept {
    static_assert(!is_pointer, "fetch_max is for numbers");
    return update([operand](T value) { return value < operand ? operand : value; }, order);
  }

 private:
  template <typename F>
  T update(F next, memory_order order) const noexcept {
    T value = load(memory_order::relaxed);
    while (!compare_exchange_weak(value, next(value), order, memory_order::relaxed)) {
    }
    return value;
  }

  T* object_;
};

} // namespace sycl
