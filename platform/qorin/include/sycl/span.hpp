// `span`: contiguous elements that belong to someone else, as std::span of C++20.
#pragma once

#include <cstddef>
#include <iterator>
#include <type_traits>

namespace sycl {

inline constexpr std::size_t dynamic_extent = static_cast<std::size_t>(-1);

template <class T, std::size_t Extent = dynamic_extent>
class span {
 public:
  using element_type = T;
  using value_type = std::remove_cv_t<T>;
  using size_type = std::size_t;
  using difference_type = std::ptrdiff_t;
  using pointer = T*;
  using reference = T&;
  using iterator = T*;
  static constexpr std::size_t extent = Extent;

  template <std::size_t E = Extent, class = std::enable_if_t<E == 0 || E == dynamic_extent>>
  constexpr span() noexcept {}
  /// `count` must be the extent, unless that is dynamic.
  constexpr span(T* first, std::size_t count) : data_(first), size_(count) {}
  /// From arrays, containers and other spans of as many elements.
  template <class Range,
            class = std::enable_if_t<
                std::is_convertible_v<
                    std::remove_pointer_t<decltype(std::data(std::declval<Range&>()))> (*)[], T (*)[]> &&
                !std::is_same_v<std::remove_cv_t<std::remove_reference_t<Range>>, span>>>
  constexpr span(Range&& elements) : span(std::data(elements), std::size(elements)) {}

  constexpr T* data() const noexcept { return data_; }
  constexpr std::size_t size() const noexcept { return size_; }
  constexpr std::size_t size_bytes() const noexcept { return size_ * sizeof(T); }
  constexpr bool empty() const noexcept { return size_ == 0; }
  constexpr T& operator[](std::size_t index) const { return data_[index]; }
  constexpr T& front() const { return data_[0]; }
  constexpr T& back() const { return data_[size_ - 1]; }
  constexpr T* begin() const noexcept { return data_; }
  constexpr T* end() const noexcept { return data_ + size_; }

  constexpr span<T> first(std::size_t count) const { return {data_, count}; }
  constexpr span<T> last(std::size_t count) const { return {data_ + (size_ - count), count}; }
  constexpr span<T> subspan(std::size_t offset, std::size_t count = dynamic_extent) const {
    return {data_ + offset, count == dynamic_extent ? size_ - offset : count};
  }

 private:
  T* data_ = nullptr;
  std::size_t size_ = 0;
};

template <class T, std::size_t Size>
span(T (&)[Size]) -> span<T, Size>;
template <class Range>
span(Range&&) -> span<std::remove_pointer_t<decltype(std::data(std::declval<Range&>()))>>;

} // namespace sycl
