// `buffer`: memory that commands use through accessors. Accessors order the commands and the end of the last
// handle waits for them and writes the contents back.
//
// Memory given as `T*`, as a container or as a shared pointer is used directly: nothing is copied, and at the end of
// the buffer it holds the contents. `set_final_data` and `set_write_back(false)` part the two from then on.
#pragma once

#include <sycl/detail/buffer_state.hpp>
#include <sycl/detail/handle.hpp>
#include <sycl/id.hpp>
#include <sycl/is_device_copyable.hpp>

#include <sycl/context.hpp>

#include <cstring>
#include <iterator>
#include <mutex>
#include <new>
#include <optional>

namespace sycl {

namespace property::buffer {

/// Commands that use the buffer hold the mutex while they run, and so does the write-back.
class use_mutex {
 public:
  use_mutex(std::mutex& mutex) : mutex_(&mutex) {}
  std::mutex* get_mutex_ptr() const { return mutex_; }

 private:
  std::mutex* mutex_;
};

/// Only queues of this context take commands that use the buffer; others throw errc::invalid.
class context_bound {
 public:
  context_bound(context bound) : context_(std::move(bound)) {}
  context get_context() const { return context_; }

 private:
  context context_;
};

} // namespace property::buffer

template <>
struct is_property<property::buffer::use_mutex> : std::true_type {};
template <>
struct is_property<property::buffer::context_bound> : std::true_type {};
template <class T, int Dimensions, class AllocatorT>
struct is_property_of<property::buffer::use_mutex, buffer<T, Dimensions, AllocatorT>> : std::true_type {};
template <class T, int Dimensions, class AllocatorT>
struct is_property_of<property::buffer::context_bound, buffer<T, Dimensions, AllocatorT>> : std::true_type {};

class handler;
template <class T, int Dimensions, access_mode Mode, target Target, access::placeholder IsPlaceholder>
class accessor;
template <class T, int Dimensions, access_mode Mode>
class host_accessor;

/// The default allocator: memory aligned for the widest vectors.
template <class T>
class buffer_allocator {
 public:
  using value_type = T;
  buffer_allocator() = default;
  template <class U>
  buffer_allocator(const buffer_allocator<U>&) noexcept {}
  T* allocate(std::size_t count) {
    return static_cast<T*>(::operator new (count * sizeof(T), std::align_val_t{alignment}));
  }
  void deallocate(T* memory, std::size_t) noexcept {
    ::operator delete (memory, std::align_val_t{alignment});
  }
  friend bool operator==(const buffer_allocator&, const buffer_allocator&) { return true; }
  friend bool operator!=(const buffer_allocator&, const buffer_allocator&) { return false; }

 private:
  static constexpr std::size_t alignment = alignof(T) > 64 ? alignof(T) : 64;
};

template <class T, int Dimensions = 1, class AllocatorT = buffer_allocator<std::remove_const_t<T>>>
class buffer : public detail::handle<buffer<T, Dimensions, AllocatorT>, detail::buffer_owner>,
               public property_interface<buffer<T, Dimensions, AllocatorT>> {
  static_assert(is_device_copyable_v<T>, "elements must be copyable between host and device");
  using handle = detail::handle<buffer, detail::buffer_owner>;
  using plain = std::remove_const_t<T>;

 public:
  using value_type = T;
  using reference = value_type&;
  using const_reference = const value_type&;
  using allocator_type = AllocatorT;

  buffer(const range<Dimensions>& extent, const property_list& properties = {})
      : buffer(extent, AllocatorT(), properties) {}
  buffer(const range<Dimensions>& extent, AllocatorT allocator, const property_list& properties = {})
      : buffer(nullptr, nullptr, extent, allocator, properties) {}

  /// The memory at `host` belongs to the buffer until its end.
  buffer(plain* host, const range<Dimensions>& extent, const property_list& properties = {})
      : buffer(host, extent, AllocatorT(), properties) {}
  buffer(plain* host, const range<Dimensions>& extent, AllocatorT allocator,
         const property_list& properties = {})
      : buffer(host, nullptr, extent, allocator, properties) {}
  /// The elements at `host` are copied now; nothing is written back.
  buffer(const plain* host, const range<Dimensions>& extent, const property_list& properties = {})
      : buffer(host, extent, AllocatorT(), properties) {}
  buffer(const plain* host, const range<Dimensions>& extent, AllocatorT allocator,
         const property_list& properties = {})
      : buffer(nullptr, nullptr, extent, allocator, properties) {
    memory().set_write_back(false);
    if (byte_size() > 0)
      std::memcpy(memory().data(), host, byte_size());
  }

  /// As `T*`, kept alive until the end of the buffer.
  buffer(const std::shared_ptr<T>& host, const range<Dimensions>& extent,
         const property_list& properties = {})
      : buffer(host, extent, AllocatorT(), properties) {}
  buffer(const std::shared_ptr<T>& host, const range<Dimensions>& extent, AllocatorT allocator,
         const property_list& properties = {})
      : buffer(const_cast<plain*>(host.get()), host_owner(host), extent, allocator, properties) {}
  buffer(const std::shared_ptr<T[]>& host, const range<Dimensions>& extent,
         const property_list& properties = {})
      : buffer(host, extent, AllocatorT(), properties) {}
  buffer(const std::shared_ptr<T[]>& host, const range<Dimensions>& extent, AllocatorT allocator,
         const property_list& properties = {})
      : buffer(const_cast<plain*>(host.get()), host_owner(host), extent, allocator, properties) {}

  /// The elements are copied now; nothing is written back.
  template <class InputIterator, int N = Dimensions,
            class = std::enable_if_t<
                N == 1 && std::is_base_of_v<std::input_iterator_tag,
                                            typename std::iterator_traits<InputIterator>::iterator_category>>>
  buffer(InputIterator first, InputIterator last, const property_list& properties = {})
      : buffer(first, last, AllocatorT(), properties) {}
  template <class InputIterator, int N = Dimensions,
            class = std::enable_if_t<
                N == 1 && std::is_base_of_v<std::input_iterator_tag,
                                            typename std::iterator_traits<InputIterator>::iterator_category>>>
  buffer(InputIterator first, InputIterator last, AllocatorT allocator, const property_list& properties = {})
      : buffer(nullptr, nullptr, range<1>(static_cast<std::size_t>(std::distance(first, last))), allocator,
               properties) {
    memory().set_write_back(false);
    if (size() > 0)
      for (auto* to = static_cast<plain*>(memory().data()); first != last; ++first)
        *to++ = *first;
  }

  /// A contiguous container: its elements are the buffer's memory until its end.
  template <class Container, int N = Dimensions,
            class = std::enable_if_t<
                N == 1 && std::is_convertible_v<decltype(std::data(std::declval<Container&>())), const T*>>,
            class = decltype(std::size(std::declval<Container&>()))>
  buffer(Container& container, const property_list& properties = {})
      : buffer(container, AllocatorT(), properties) {}
  template <class Container, int N = Dimensions,
            class = std::enable_if_t<
                N == 1 && std::is_convertible_v<decltype(std::data(std::declval<Container&>())), const T*>>,
            class = decltype(std::size(std::declval<Container&>()))>
  buffer(Container& container, AllocatorT allocator, const property_list& properties = {})
      : buffer(std::data(container), range<1>(std::size(container)), allocator, properties) {}

  /// A sub-buffer: contiguous elements of another buffer. Throws errc::invalid when they are not contiguous, reach
  /// beyond the buffer, or the buffer is a sub-buffer itself.
  buffer(buffer& parent, const id<Dimensions>& base, const range<Dimensions>& extent)
      : handle(std::make_shared<detail::buffer_owner>(parent.state_)), range_(extent),
        first_(detail::linear(base, parent.range_)), is_sub_buffer_(true), properties_(parent.properties_),
        allocator_(parent.allocator_) {
    if (parent.is_sub_buffer_)
      throw exception(make_error_code(errc::invalid), "a sub-buffer of a sub-buffer");
    bool whole_below = true; // from the inside out: every dimension below this one is taken whole
    for (int d = Dimensions - 1; d >= 0; --d) {
      if (base[d] > parent.range_[d] || extent[d] > parent.range_[d] - base[d])
        throw exception(make_error_code(errc::invalid), "a sub-buffer reaches beyond its buffer");
      if (!whole_below && extent[d] != 1)
        throw exception(make_error_code(errc::invalid), "the elements of a sub-buffer must be contiguous");
      whole_below = whole_below && extent[d] == parent.range_[d];
    }
  }

  range<Dimensions> get_range() const { return range_; }
  std::size_t size() const noexcept { return range_.size(); }
  std::size_t byte_size() const noexcept { return size() * sizeof(T); }
  AllocatorT get_allocator() const { return allocator_; }
  bool is_sub_buffer() const noexcept { return is_sub_buffer_; }

  template <access_mode Mode = std::is_const_v<T> ? access_mode::read : access_mode::read_write,
            target Target = target::device>
  auto get_access(handler& commands);
  template <access_mode Mode, target Target = target::device>
  auto get_access(handler& commands, range<Dimensions> extent, id<Dimensions> offset = {});
  template <class... Args>
  auto get_access(handler& commands, Args... args);
  template <access_mode Mode>
  [[deprecated("get_host_access")]] auto get_access();
  template <access_mode Mode>
  [[deprecated("get_host_access")]] auto get_access(range<Dimensions> extent, id<Dimensions> offset = {});
  template <class... Args>
  auto get_host_access(Args... args);

  /// The end of the buffer copies the contents to `destination`: null for nowhere, an output iterator or pointer, or
  /// a weak pointer, which counts when its object is still there.
  template <class Destination = std::nullptr_t>
  void set_final_data(Destination destination = nullptr) {
    if constexpr (std::is_pointer_v<Destination>)
      if (destination == nullptr)
        return set_final_data();
    if constexpr (std::is_null_pointer_v<Destination>)
      memory().set_final_copy({});
    else
      memory().set_final_copy([destination, count = size()](const void* from) mutable {
        copy_to(destination, static_cast<const plain*>(from), count);
      });
  }
  template <class U>
  void set_final_data(const std::shared_ptr<U>& destination) {
    set_final_data(std::weak_ptr<U>(destination));
  }
  void set_write_back(bool enabled = true) { memory().set_write_back(enabled); }

  /// The same memory as elements of another type or in another shape of the same number of bytes.
  template <class OtherT, int OtherDimensions>
  auto reinterpret(range<OtherDimensions> extent) const {
    using other_allocator =
        typename std::allocator_traits<AllocatorT>::template rebind_alloc<std::remove_const_t<OtherT>>;
    if (extent.size() * sizeof(OtherT) != byte_size())
      throw exception(make_error_code(errc::invalid), "reinterpret: the sizes in bytes differ");
    return buffer<OtherT, OtherDimensions, other_allocator>(
        this->state_, extent, first_ * sizeof(T) / sizeof(OtherT), is_sub_buffer_, properties_, allocator_);
  }

  /// In one dimension, or in the same shape when the elements are of one size.
  template <class OtherT, int OtherDimensions = Dimensions>
  auto reinterpret() const {
    if constexpr (OtherDimensions == 1) {
      return reinterpret<OtherT>(range<1>(byte_size() / sizeof(OtherT)));
    } else {
      static_assert(OtherDimensions == Dimensions && sizeof(OtherT) == sizeof(T),
                    "reinterpret: to which shape?");
      return reinterpret<OtherT>(range_);
    }
  }

 private:
  template <class, int, class>
  friend class buffer;
  friend struct detail::handle_access;
  friend class property_interface<buffer>;
  template <class, int, access_mode, target, access::placeholder>
  friend class accessor;
  template <class, int, access_mode>
  friend class host_accessor;

  buffer(plain* host, std::shared_ptr<void> keep, const range<Dimensions>& extent, AllocatorT allocator,
         const property_list& properties)
      : handle(std::make_shared<detail::buffer_owner>(std::make_shared<detail::buffer_state>(
            extent.size() * sizeof(T), allocation(allocator, extent.size()), host, std::move(keep),
            properties))),
        range_(extent), properties_(properties), allocator_(allocator) {}
  template <class OtherAllocator>
  buffer(std::shared_ptr<detail::buffer_owner> state, const range<Dimensions>& extent, std::size_t first,
         bool is_sub_buffer, const property_list& properties, const OtherAllocator& allocator)
      : handle(std::move(state)), range_(extent), first_(first), is_sub_buffer_(is_sub_buffer),
        properties_(properties), allocator_(allocator) {}

  static detail::buffer_allocation allocation(AllocatorT allocator, std::size_t count) {
    return [allocator, count](std::size_t) mutable -> std::shared_ptr<void> {
      plain* memory = std::allocator_traits<AllocatorT>::allocate(allocator, count);
      return {memory, [allocator, count](plain* p) mutable {
                std::allocator_traits<AllocatorT>::deallocate(allocator, p, count);
              }};
    };
  }
  template <class Pointer>
  static std::shared_ptr<void> host_owner(const Pointer& host) {
    return std::shared_ptr<void>(host, const_cast<plain*>(host.get()));
  }
  template <class Destination>
  static void copy_to(Destination& destination, const plain* from, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
      *destination++ = from[i];
  }
  template <class U>
  static void copy_to(std::weak_ptr<U>& destination, const plain* from, std::size_t count) {
    if (auto alive = destination.lock())
      for (std::size_t i = 0; i < count; ++i)
        alive.get()[i] = from[i];
  }

  detail::buffer_state& memory() const { return *this->state_->memory(); }
  const property_list& properties() const noexcept { return properties_; }

  range<Dimensions> range_;
  std::size_t first_ = 0; // of a sub-buffer: its first element within the memory
  bool is_sub_buffer_ = false;
  property_list properties_;
  AllocatorT allocator_;
};

template <class InputIterator, class AllocatorT>
buffer(InputIterator, InputIterator, AllocatorT, const property_list& = {})
    -> buffer<typename std::iterator_traits<InputIterator>::value_type, 1, AllocatorT>;
template <class InputIterator>
buffer(InputIterator, InputIterator, const property_list& = {})
    -> buffer<typename std::iterator_traits<InputIterator>::value_type, 1>;
template <class T, int Dimensions>
buffer(const T*, const range<Dimensions>&, const property_list& = {}) -> buffer<T, Dimensions>;
template <class T, int Dimensions>
buffer(T*, const range<Dimensions>&, const property_list& = {}) -> buffer<T, Dimensions>;
template <class T, int Dimensions, class AllocatorT>
buffer(const T*, const range<Dimensions>&, AllocatorT, const property_list& = {})
    -> buffer<T, Dimensions, AllocatorT>;
template <class Container>
buffer(Container&, const property_list& = {}) -> buffer<typename Container::value_type, 1>;
template <class Container, class AllocatorT>
buffer(Container&, AllocatorT, const property_list& = {})
    -> buffer<typename Container::value_type, 1, AllocatorT>;

} // namespace sycl

template <class T, int Dimensions, class AllocatorT>
struct std::hash<sycl::buffer<T, Dimensions, AllocatorT>>
    : sycl::detail::handle_hash<sycl::buffer<T, Dimensions, AllocatorT>> {};
