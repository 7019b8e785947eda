// `handler`: records one command group: what it waits for, which buffers it uses, and its one action.
#pragma once

#include <sycl/accessor.hpp>
#include <sycl/detail/group_kernel.hpp>
#include <sycl/detail/work.hpp>
#include <sycl/event.hpp>
#include <sycl/interop_handle.hpp>
#include <sycl/local_accessor.hpp>
#include <sycl/reduction.hpp>

#include <tuple>

namespace sycl {

class queue;

namespace detail {

struct recording;

/// The name of a kernel that the caller did not name.
class unnamed_kernel;

QORIN_EXPORT void copy_bytes(void* to, const void* from, std::size_t bytes);
QORIN_EXPORT void set_bytes(void* to, int value, std::size_t bytes);

/// Copies a box between two row-major memories; extents in elements, all three-dimensional.
struct box_copy {
  void* to;
  const void* from;
  std::size_t element_bytes;
  range<3> box;
  range<3> to_memory;
  range<3> from_memory;
};
QORIN_EXPORT void copy_box(const box_copy& what);

template <class First, class... Rest>
const First& first_of(const First& first, const Rest&...) {
  return first;
}

template <int Dimensions>
range<3> padded(const range<Dimensions>& r) {
  range<3> result(1, 1, 1);
  for (int d = 0; d < Dimensions; ++d)
    result[3 - Dimensions + d] = r[d];
  return result;
}

} // namespace detail

class QORIN_EXPORT handler {
 public:
  handler(const handler&) = delete;
  handler& operator=(const handler&) = delete;

  void depends_on(const event& dependency);
  void depends_on(const std::vector<event>& dependencies);

  /// Makes the request of a placeholder accessor.
  template <class T, int Dimensions, access_mode Mode, target Target, access::placeholder P>
  void require(const accessor<T, Dimensions, Mode, Target, P>& a) {
    if (a.memory_ == nullptr)
      throw exception(make_error_code(errc::invalid), "require: an accessor of no buffer");
    detail::request(*this, *a.memory_, Mode);
  }

  /// Runs `f()` or `f(interop_handle)` on a thread of the host.
  template <class F>
  void host_task(F f) {
    if constexpr (std::is_invocable_v<F&>)
      set_work(detail::make_work(std::move(f)));
    else
      set_work(detail::make_work([f = std::move(f), interop = interop()]() mutable { f(interop); }));
  }

  template <class KernelName = detail::unnamed_kernel, class Kernel>
  void single_task(const Kernel& kernel) {
    set_work(detail::make_work([kernel] { kernel(); }));
  }

  /// `rest` are reductions, if any, and the kernel. The kernel takes an item, an id or, in one dimension, an
  /// integer, and then the reducers.
  template <class KernelName = detail::unnamed_kernel, int Dimensions, class... Rest>
  void parallel_for(range<Dimensions> extent, const Rest&... rest) {
    static_assert(sizeof...(Rest) > 0, "parallel_for needs a kernel");
    if constexpr (sizeof...(Rest) == 1)
      set_work(detail::make_work(
          [extent, kernel = detail::first_of(rest...)] { detail::run_range(extent, kernel); }));
    else
      set_work(detail::make_work([extent, all = std::make_tuple(rest...)] {
        std::apply([&](const auto&... each) { detail::run_range_reduction(extent, each...); }, all);
      }));
  }
  // For sizes written as plain integers, or as integers in braces.
  template <class KernelName = detail::unnamed_kernel, class... Rest>
  void parallel_for(range<1> extent, const Rest&... rest) {
    parallel_for<KernelName, 1, Rest...>(extent, rest...);
  }
  template <class KernelName = detail::unnamed_kernel, class... Rest>
  void parallel_for(range<2> extent, const Rest&... rest) {
    parallel_for<KernelName, 2, Rest...>(extent, rest...);
  }
  template <class KernelName = detail::unnamed_kernel, class... Rest>
  void parallel_for(range<3> extent, const Rest&... rest) {
    parallel_for<KernelName, 3, Rest...>(extent, rest...);
  }
  /// The kernel takes an nd_item and then the reducers. Throws errc::nd_range for groups that are too large or do
  /// not fill the range.
  template <class KernelName = detail::unnamed_kernel, int Dimensions, class... Rest>
  void parallel_for(nd_range<Dimensions> extent, const Rest&... rest) {
    static_assert(sizeof...(Rest) > 0, "parallel_for needs a kernel");
    detail::check_groups(detail::padded(extent.get_global_range()), detail::padded(extent.get_local_range()));
    if constexpr (sizeof...(Rest) == 1)
      set_work(detail::make_work([extent, local_bytes = local_bytes(), kernel = detail::first_of(rest...)] {
        detail::run_nd_range(extent, local_bytes, kernel);
      }));
    else
      set_work(detail::make_work([extent, local_bytes = local_bytes(), all = std::make_tuple(rest...)] {
        std::apply([&](const auto&... each) { detail::run_nd_range_reduction(extent, local_bytes, each...); },
                   all);
      }));
  }

  void memcpy(void* to, const void* from, std::size_t bytes);
  void memset(void* to, int value, std::size_t bytes);
  template <class T>
  void fill(void* to, const T& pattern, std::size_t count) {
    static_assert(std::is_trivially_copyable_v<T>, "patterns are copied to the device");
    parallel_for(range<1>(count), [at = static_cast<T*>(to), pattern](id<1> i) { at[i] = pattern; });
  }
  template <class T>
  void copy(const T* from, T* to, std::size_t count) {
    static_assert(std::is_trivially_copyable_v<T>, "elements are copied between host and device");
    memcpy(to, from, count * sizeof(T));
  }
  /// A hint; all memory is the host's here, so there is nothing to move.
  void prefetch(void* memory, std::size_t bytes);
  void mem_advise(void* memory, std::size_t bytes, int advice);

  template <class T, int Dimensions, access_mode Mode, target Target, access::placeholder P, class U>
  void copy(accessor<T, Dimensions, Mode, Target, P> from, std::shared_ptr<U> to) {
    copy_box({to.get(), from_data(from), sizeof(T), detail::padded(from.get_range()),
              detail::padded(from.get_range()), detail::padded(from.memory_range_)},
             to);
  }
  template <class T, int Dimensions, access_mode Mode, target Target, access::placeholder P, class U>
  void copy(std::shared_ptr<U> from, accessor<T, Dimensions, Mode, Target, P> to) {
    copy_box({to_data(to), from.get(), sizeof(T), detail::padded(to.get_range()),
              detail::padded(to.memory_range_), detail::padded(to.get_range())},
             from);
  }
  template <class T, int Dimensions, access_mode Mode, target Target, access::placeholder P>
  void copy(accessor<T, Dimensions, Mode, Target, P> from, std::remove_const_t<T>* to) {
    copy_box({to, from_data(from), sizeof(T), detail::padded(from.get_range()),
              detail::padded(from.get_range()), detail::padded(from.memory_range_)},
             nullptr);
  }
  template <class T, int Dimensions, access_mode Mode, target Target, access::placeholder P>
  void copy(const std::remove_const_t<T>* from, accessor<T, Dimensions, Mode, Target, P> to) {
    copy_box({to_data(to), from, sizeof(T), detail::padded(to.get_range()), detail::padded(to.memory_range_),
              detail::padded(to.get_range())},
             nullptr);
  }
  /// Throws errc::invalid when `to` is smaller than `from` in a dimension.
  template <class T, class U, int Dimensions, access_mode FromMode, target FromTarget,
            access::placeholder FromP, access_mode ToMode, target ToTarget, access::placeholder ToP>
  void copy(accessor<T, Dimensions, FromMode, FromTarget, FromP> from,
            accessor<U, Dimensions, ToMode, ToTarget, ToP> to) {
    static_assert(sizeof(T) == sizeof(U), "elements of equal size");
    for (int d = 0; d < Dimensions; ++d)
      if (from.get_range()[d] > to.get_range()[d])
        throw exception(make_error_code(errc::invalid), "copy: the destination is smaller than the source");
    copy_box({to_data(to), from_data(from), sizeof(T), detail::padded(from.get_range()),
              detail::padded(to.memory_range_), detail::padded(from.memory_range_)},
             nullptr);
  }
  template <class T, int Dimensions, access_mode Mode, target Target, access::placeholder P>
  void fill(accessor<T, Dimensions, Mode, Target, P> to, const T& pattern) {
    static_assert(Mode != access_mode::read, "fill writes");
    if constexpr (Dimensions == 1)
      parallel_for(to.get_range(), [to, pattern](id<1> i) { to[i] = pattern; });
    else
      parallel_for(to.get_range(), [to, pattern](id<Dimensions> i) { to[i] = pattern; });
  }
  /// Host memory given to the buffer is used directly, so this only orders.
  template <class T, int Dimensions, access_mode Mode, target Target, access::placeholder P>
  void update_host(accessor<T, Dimensions, Mode, Target, P>) {
    set_work(detail::make_work([] {}));
  }

 private:
  friend class queue;
  friend void detail::request(handler&, detail::buffer_state&, access_mode);
  friend std::size_t detail::reserve_local_memory(handler&, std::size_t, std::size_t);

  explicit handler(const queue& q);
  ~handler();
  event finish();

  /// Throws errc::invalid when the group has an action already.
  void set_work(std::unique_ptr<detail::work> action);
  void copy_box(const detail::box_copy& what, std::shared_ptr<const void> keep);
  interop_handle interop() const;
  std::size_t local_bytes() const;
  template <class Accessor>
  static const void* from_data(const Accessor& a) {
    return a.data_;
  }
  template <class Accessor>
  static void* to_data(const Accessor& a) {
    static_assert(!std::is_const_v<typename Accessor::value_type>, "the destination must be writable");
    return a.data_;
  }

  std::shared_ptr<detail::queue_state> queue_;
  std::unique_ptr<detail::recording> group_;
};

} // namespace sycl
