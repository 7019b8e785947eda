// `handler`: records one command group: what it waits for, which buffers it uses, and its one action.
#pragma once

#include <sycl/accessor.hpp>
#include <sycl/detail/group_kernel.hpp>
#include <sycl/detail/work.hpp>
#include <sycl/event.hpp>
#include <sycl/h_item.hpp>
#include <sycl/interop_handle.hpp>
#include <sycl/kernel_bundle.hpp>
#include <sycl/kernel_handler.hpp>
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
  range<3> to_box{}; // where it is of another shape than the source's; may be larger
};
QORIN_EXPORT void copy_box(const box_copy& what);

template <int Dimensions>
range<Dimensions> ones() {
  range<Dimensions> result;
  for (int d = 0; d < Dimensions; ++d)
    result[d] = 1;
  return result;
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

  /// The kernels of this group come from `bundle`: launching one that it has not, throws errc::kernel_not_supported.
  /// Kernels without a name are not looked for. Throws errc::invalid for a bundle of another context.
  void use_kernel_bundle(const kernel_bundle<bundle_state::executable>& bundle);
  /// Throws errc::invalid after use_kernel_bundle.
  template <auto& Id>
  void set_specialization_constant(detail::specialization_type<Id> value) {
    set_constant(&Id, std::move(value));
  }
  template <auto& Id>
  detail::specialization_type<Id> get_specialization_constant() const {
    return detail::specialization_access::value(constants_.get(), Id);
  }

  template <class KernelName = detail::unnamed_kernel, class Kernel>
  void single_task(const Kernel& kernel) {
    check_name<KernelName>();
    check_no_local_memory();
    if constexpr (std::is_invocable_v<const Kernel&>)
      set_work(detail::make_work([kernel] { kernel(); }));
    else
      set_work(detail::make_work([kernel, constants = kernel_handler(constants())] { kernel(constants); }));
  }

  /// `rest` are reductions, if any, and the kernel. The kernel takes an item, an id or, in one dimension, an
  /// integer, and then the reducers; without reductions, a kernel_handler if it wants one.
  template <class KernelName = detail::unnamed_kernel, int Dimensions, class... Rest>
  void parallel_for(range<Dimensions> extent, const Rest&... rest) {
    static_assert(sizeof...(Rest) > 0, "parallel_for needs a kernel");
    check_name<KernelName>();
    check_no_local_memory();
    if constexpr (sizeof...(Rest) == 1)
      set_work(detail::make_work([extent, kernel = with_constants<item<Dimensions, false>>(rest...)] {
        detail::run_range(extent, kernel);
      }));
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
    check_name<KernelName>();
    detail::check_groups(detail::padded(extent.get_global_range()), detail::padded(extent.get_local_range()),
                         extent.get_offset() == id<Dimensions>());
    if constexpr (sizeof...(Rest) == 1)
      set_work(detail::make_work(
          [extent, local_bytes = local_bytes(), kernel = with_constants<nd_item<Dimensions>>(rest...)] {
            detail::run_nd_range(extent, local_bytes, kernel);
          }));
    else
      set_work(detail::make_work([extent, local_bytes = local_bytes(), all = std::make_tuple(rest...)] {
        std::apply([&](const auto&... each) { detail::run_nd_range_reduction(extent, local_bytes, each...); },
                   all);
      }));
  }

  /// Hierarchical: the kernel takes a group, runs once for each, and calls parallel_for_work_item there.
  template <class KernelName = detail::unnamed_kernel, int Dimensions, class Kernel>
  void parallel_for_work_group(range<Dimensions> groups, range<Dimensions> items, const Kernel& kernel) {
    parallel_for<KernelName>(
        nd_range<Dimensions>(groups, detail::ones<Dimensions>()),
        [items, kernel = with_constants<group<Dimensions>>(kernel)](nd_item<Dimensions> item) {
          kernel(detail::group_access::with_items(item.get_group(), items));
        });
  }
  template <class KernelName = detail::unnamed_kernel, int Dimensions, class Kernel>
  void parallel_for_work_group(range<Dimensions> groups, const Kernel& kernel) {
    parallel_for_work_group<KernelName>(groups, detail::ones<Dimensions>(), kernel);
  }

  void memcpy(void* to, const void* from, std::size_t bytes);
  void memset(void* to, int value, std::size_t bytes);
  template <class T>
  void fill(void* to, const T& pattern, std::size_t count) {
    static_assert(is_device_copyable_v<T>, "patterns are copied to the device");
    parallel_for(range<1>(count), [at = static_cast<T*>(to), pattern](id<1> i) { at[i] = pattern; });
  }
  template <class T>
  void copy(const T* from, T* to, std::size_t count) {
    static_assert(is_device_copyable_v<T>, "elements are copied between host and device");
    memcpy(to, from, count * sizeof(T));
  }
  /// A hint; all memory is the host's here, so there is nothing to move.
  void prefetch(const void* memory, std::size_t bytes);
  void mem_advise(const void* memory, std::size_t bytes, int advice);

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
  /// Element by element, in the linear order of the one box and of the other. Throws errc::invalid when `to` has fewer.
  template <class T, class U, int FromDimensions, int ToDimensions, access_mode FromMode, target FromTarget,
            access::placeholder FromP, access_mode ToMode, target ToTarget, access::placeholder ToP>
  void copy(accessor<T, FromDimensions, FromMode, FromTarget, FromP> from,
            accessor<U, ToDimensions, ToMode, ToTarget, ToP> to) {
    static_assert(sizeof(T) == sizeof(U), "elements of equal size");
    if (from.size() > to.size())
      throw exception(make_error_code(errc::invalid), "copy: the destination is smaller than the source");
    copy_box({to_data(to), from_data(from), sizeof(T), detail::padded(from.get_range()),
              detail::padded(to.memory_range_), detail::padded(from.memory_range_),
              detail::padded(to.get_range())},
             nullptr);
  }
  template <class T, int Dimensions, access_mode Mode, target Target, access::placeholder P>
  void fill(accessor<T, Dimensions, Mode, Target, P> to, const T& pattern) {
    static_assert(Mode != access_mode::read, "fill writes");
    parallel_for(to.get_range(), [to, pattern](id<detail::shape<Dimensions>> i) { to[i] = pattern; });
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

  template <class KernelName>
  void check_name() const {
    if constexpr (!std::is_same_v<KernelName, detail::unnamed_kernel>)
      if (bundle_)
        check_kernel(&detail::kernel_tag<KernelName>);
  }
  void check_kernel(const void* tag) const;
  /// Throws errc::kernel_argument when the group has local accessors: the kernel has no work-groups.
  void check_no_local_memory() const;
  void set_constant(const void* id, std::any value);
  const std::shared_ptr<detail::specialization_values>& constants();
  /// The kernel as one that takes an item alone.
  template <class Item, class Kernel>
  auto with_constants(const Kernel& kernel) {
    if constexpr (std::is_invocable_v<const Kernel&, Item, kernel_handler>)
      return [kernel, constants = kernel_handler(constants())](const Item& item) { kernel(item, constants); };
    else
      return kernel;
  }

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
  std::shared_ptr<detail::bundle_contents> bundle_;
  std::shared_ptr<detail::specialization_values> constants_; // made when first asked for
};

} // namespace sycl
