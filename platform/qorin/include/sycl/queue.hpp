// `queue`: where command groups are submitted. Submission records the commands and returns at once; they run as soon
// as what they depend on is complete, on an in-order queue one after the other.
#pragma once

#include <sycl/handler.hpp>
#include <sycl/usm.hpp>

namespace sycl {

class QORIN_EXPORT queue : public detail::handle<queue, detail::queue_state>,
                           public property_interface<queue> {
  template <class Selector>
  using if_selector = std::enable_if_t<std::is_invocable_r_v<int, const Selector&, const device&>>;

 public:
  explicit queue(const property_list& properties = {});
  explicit queue(const async_handler& handler, const property_list& properties = {});
  template <class Selector, class = if_selector<Selector>>
  explicit queue(const Selector& selector, const property_list& properties = {})
      : queue(device(selector), properties) {}
  template <class Selector, class = if_selector<Selector>>
  explicit queue(const Selector& selector, const async_handler& handler, const property_list& properties = {})
      : queue(device(selector), handler, properties) {}
  explicit queue(const device& dev, const property_list& properties = {});
  explicit queue(const device& dev, const async_handler& handler, const property_list& properties = {});
  /// With a context: throws errc::invalid unless the device, or the one the selector likes best of all, is one of its
  /// devices.
  template <class Selector, class = if_selector<Selector>>
  explicit queue(const context& ctx, const Selector& selector, const property_list& properties = {})
      : queue(ctx, device(selector), properties) {}
  template <class Selector, class = if_selector<Selector>>
  explicit queue(const context& ctx, const Selector& selector, const async_handler& handler,
                 const property_list& properties = {})
      : queue(ctx, device(selector), handler, properties) {}
  explicit queue(const context& ctx, const device& dev, const property_list& properties = {});
  explicit queue(const context& ctx, const device& dev, const async_handler& handler,
                 const property_list& properties = {});

  backend get_backend() const noexcept;
  context get_context() const;
  device get_device() const;
  bool is_in_order() const;
  template <class Descriptor>
  typename Descriptor::return_type get_info() const;

  /// Calls `group(handler&)` now, on this thread, and enters what it recorded into the graph of commands.
  template <class CommandGroup>
  event submit(CommandGroup group) {
    detail::note_use();
    handler commands(*this);
    group(commands);
    return commands.finish();
  }

  /// A group that this queue cannot take, for it throws a sycl::exception, goes to the other one.
  template <class CommandGroup>
  event submit(CommandGroup group, const queue& secondary) {
    try {
      return submit(group);
    } catch (const exception&) {
      return queue(secondary).submit(group);
    }
  }

  /// Returns when everything submitted before is complete.
  void wait();
  /// As wait; then hands errors of commands to the async handler.
  void wait_and_throw();
  /// Hands errors of commands that ended so far to the async handler of the queue, else of its context; without
  /// either they are printed and the program ends.
  void throw_asynchronous();

#define QORIN_SHORTCUT(call)                                                                                 \
  return submit([&](handler& commands) {                                                                     \
    commands.depends_on(dependencies);                                                                       \
    commands.call;                                                                                           \
  })

  template <class KernelName = detail::unnamed_kernel, class Kernel>
  event single_task(const Kernel& kernel) {
    return submit([&](handler& commands) { commands.single_task<KernelName>(kernel); });
  }
  template <class KernelName = detail::unnamed_kernel, class Kernel>
  event single_task(const event& dependencies, const Kernel& kernel) {
    QORIN_SHORTCUT(template single_task<KernelName>(kernel));
  }
  template <class KernelName = detail::unnamed_kernel, class Kernel>
  event single_task(const std::vector<event>& dependencies, const Kernel& kernel) {
    QORIN_SHORTCUT(template single_task<KernelName>(kernel));
  }

  /// `rest` are one event or a vector of events to depend on, reductions, if any, and the kernel.
  template <class KernelName = detail::unnamed_kernel, int Dimensions, class... Rest>
  event parallel_for(range<Dimensions> extent, Rest&&... rest) {
    return launch<KernelName>(extent, std::forward<Rest>(rest)...);
  }
  template <class KernelName = detail::unnamed_kernel, class... Rest>
  event parallel_for(range<1> extent, Rest&&... rest) {
    return launch<KernelName>(extent, std::forward<Rest>(rest)...);
  }
  template <class KernelName = detail::unnamed_kernel, class... Rest>
  event parallel_for(range<2> extent, Rest&&... rest) {
    return launch<KernelName>(extent, std::forward<Rest>(rest)...);
  }
  template <class KernelName = detail::unnamed_kernel, class... Rest>
  event parallel_for(range<3> extent, Rest&&... rest) {
    return launch<KernelName>(extent, std::forward<Rest>(rest)...);
  }
  template <class KernelName = detail::unnamed_kernel, int Dimensions, class... Rest>
  event parallel_for(nd_range<Dimensions> extent, Rest&&... rest) {
    return launch<KernelName>(extent, std::forward<Rest>(rest)...);
  }
  // For events in braces.
#define QORIN_LAUNCH_AFTER(extent_type)                                                                      \
  template <class KernelName = detail::unnamed_kernel, class... Rest>                                        \
  event parallel_for(extent_type extent, const std::vector<event>& dependencies, Rest&&... rest) {           \
    return launch<KernelName>(extent, dependencies, std::forward<Rest>(rest)...);                            \
  }
  QORIN_LAUNCH_AFTER(range<1>)
  QORIN_LAUNCH_AFTER(range<2>)
  QORIN_LAUNCH_AFTER(range<3>)
  QORIN_LAUNCH_AFTER(nd_range<1>)
  QORIN_LAUNCH_AFTER(nd_range<2>)
  QORIN_LAUNCH_AFTER(nd_range<3>)
#undef QORIN_LAUNCH_AFTER

  event memcpy(void* to, const void* from, std::size_t bytes, const std::vector<event>& dependencies = {}) {
    QORIN_SHORTCUT(memcpy(to, from, bytes));
  }
  event memcpy(void* to, const void* from, std::size_t bytes, const event& dependencies) {
    QORIN_SHORTCUT(memcpy(to, from, bytes));
  }
  event memset(void* to, int value, std::size_t bytes, const std::vector<event>& dependencies = {}) {
    QORIN_SHORTCUT(memset(to, value, bytes));
  }
  event memset(void* to, int value, std::size_t bytes, const event& dependencies) {
    QORIN_SHORTCUT(memset(to, value, bytes));
  }
  template <class T>
  event fill(void* to, const T& pattern, std::size_t count, const std::vector<event>& dependencies = {}) {
    QORIN_SHORTCUT(fill(to, pattern, count));
  }
  template <class T>
  event fill(void* to, const T& pattern, std::size_t count, const event& dependencies) {
    QORIN_SHORTCUT(fill(to, pattern, count));
  }
  template <class T>
  event copy(const T* from, T* to, std::size_t count, const std::vector<event>& dependencies = {}) {
    QORIN_SHORTCUT(copy(from, to, count));
  }
  template <class T>
  event copy(const T* from, T* to, std::size_t count, const event& dependencies) {
    QORIN_SHORTCUT(copy(from, to, count));
  }
  event prefetch(const void* memory, std::size_t bytes, const std::vector<event>& dependencies = {}) {
    QORIN_SHORTCUT(prefetch(memory, bytes));
  }
  event prefetch(const void* memory, std::size_t bytes, const event& dependencies) {
    QORIN_SHORTCUT(prefetch(memory, bytes));
  }
  event mem_advise(const void* memory, std::size_t bytes, int advice,
                   const std::vector<event>& dependencies = {}) {
    QORIN_SHORTCUT(mem_advise(memory, bytes, advice));
  }
  event mem_advise(const void* memory, std::size_t bytes, int advice, const event& dependencies) {
    QORIN_SHORTCUT(mem_advise(memory, bytes, advice));
  }
#undef QORIN_SHORTCUT

  /// Copies and fills through placeholder accessors.
  template <class T, int Dimensions, access_mode Mode, target Target, access::placeholder P, class To>
  event copy(accessor<T, Dimensions, Mode, Target, P> from, To to) {
    return submit([&](handler& commands) {
      commands.require(from);
      if constexpr (detail::is_accessor<To>)
        commands.require(to);
      commands.copy(from, to);
    });
  }
  template <class T, int Dimensions, access_mode Mode, target Target, access::placeholder P, class From,
            class = std::enable_if_t<!detail::is_accessor<From>>>
  event copy(From from, accessor<T, Dimensions, Mode, Target, P> to) {
    return submit([&](handler& commands) {
      commands.require(to);
      commands.copy(from, to);
    });
  }
  template <class T, int Dimensions, access_mode Mode, target Target, access::placeholder P>
  event fill(accessor<T, Dimensions, Mode, Target, P> to, const T& pattern) {
    return submit([&](handler& commands) {
      commands.require(to);
      commands.fill(to, pattern);
    });
  }

  template <class T, int Dimensions, access_mode Mode, target Target, access::placeholder P>
  event update_host(accessor<T, Dimensions, Mode, Target, P> of) {
    return submit([&](handler& commands) {
      commands.require(of);
      commands.update_host(of);
    });
  }

 private:
  friend struct detail::handle_access;
  friend class property_interface<queue>;
  using handle::handle;

  template <class KernelName, class Extent, class First, class... Rest>
  event launch(const Extent& extent, First&& first, Rest&&... rest) {
    return submit([&](handler& commands) {
      if constexpr (std::is_convertible_v<First, event> || std::is_convertible_v<First, std::vector<event>>) {
        commands.depends_on(first);
        commands.parallel_for<KernelName>(extent, std::forward<Rest>(rest)...);
      } else {
        commands.parallel_for<KernelName>(extent, std::forward<First>(first), std::forward<Rest>(rest)...);
      }
    });
  }
  const property_list& properties() const noexcept;
};

#define QORIN_INFO_DECLARE(descriptor, type)                                                                 \
  template <>                                                                                                \
  QORIN_EXPORT type queue::get_info<info::queue::descriptor>() const;
QORIN_INFO_QUEUE(QORIN_INFO_DECLARE)
#undef QORIN_INFO_DECLARE

template <class T, usm::alloc Kind, std::size_t Alignment>
usm_allocator<T, Kind, Alignment>::usm_allocator(const queue& q, const property_list& properties)
    : usm_allocator(q.get_context(), q.get_device(), properties) {}

} // namespace sycl

template <>
struct std::hash<sycl::queue> : sycl::detail::handle_hash<sycl::queue> {};
