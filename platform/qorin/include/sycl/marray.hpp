// sycl::marray: an array of numbers, or of what has their operators, of any length.
#pragma once

#include <cstddef>
#include <type_traits>

#include <sycl/detail/elementwise_operators.hpp>
#include <sycl/half.hpp>

namespace sycl {

template <typename DataT, std::size_t NumElements>
class marray;

namespace detail {

template <typename A>
struct marray_argument {
  static constexpr std::size_t count = 1;
  static constexpr bool is_marray = false;
};
template <typename T, std::size_t N>
struct marray_argument<marray<T, N>> {
  static constexpr std::size_t count = N;
  static constexpr bool is_marray = true;
  using element = T;
};

template <typename T, typename A>
constexpr bool brings_marray_elements() {
  if constexpr (marray_argument<A>::is_marray)
    return std::is_same_v<typename marray_argument<A>::element, T>;
  else
    return std::is_convertible_v<A, T>;
}

/// Whether arguments of types A... together make up the N elements; a lone scalar never does, since that
/// constructor is the explicit one.
template <typename T, std::size_t N, typename... A>
constexpr bool make_up_marray() {
  return sizeof...(A) > 1 && (marray_argument<A>::count + ... + 0) == N &&
         (brings_marray_elements<T, A>() && ...);
}

} // namespace detail

template <typename DataT, std::size_t NumElements>
class marray {
  static_assert(std::is_default_constructible_v<DataT>, "elements start as the default");
  static_assert(NumElements > 0, "an marray has at least one element");

 public:
  using value_type = DataT;
  using reference = DataT&;
  using const_reference = const DataT&;
  using iterator = DataT*;
  using const_iterator = const DataT*;

  constexpr marray() : data_{} {}

  explicit constexpr marray(const DataT& value) : data_{} {
    for (DataT& element : data_)
      element = value;
  }

  /// From scalars and marrays whose elements, in order, are exactly this one's.
  template <typename... Args,
            std::enable_if_t<detail::make_up_marray<DataT, NumElements, Args...>(), int> = 0>
  constexpr marray(const Args&... args) : data_{} {
    std::size_t at = 0;
    (append(at, args), ...);
  }

  constexpr marray& operator=(const DataT& value) { return *this = marray(value); }

  template <std::size_t N = NumElements, std::enable_if_t<N == 1, int> = 0>
  constexpr operator DataT() const {
    return data_[0];
  }

  static constexpr std::size_t size() noexcept { return NumElements; }

  constexpr reference operator[](std::size_t index) { return data_[index]; }
  constexpr const_reference operator[](std::size_t index) const { return data_[index]; }

  constexpr iterator begin() { return data_; }
  constexpr const_iterator begin() const { return data_; }
  constexpr iterator end() { return data_ + NumElements; }
  constexpr const_iterator end() const { return data_ + NumElements; }

 private:
  using relation_type = marray<bool, NumElements>;
  static constexpr int count_ = static_cast<int>(NumElements);

 public:
  QORIN_ELEMENTWISE_OPERATORS(marray, DataT, count_, relation_type, true)

 private:
  template <typename A>
  constexpr void append(std::size_t& at, const A& argument) {
    if constexpr (detail::marray_argument<A>::is_marray) {
      for (const auto& element : argument)
        data_[at++] = element;
    } else {
      data_[at++] = static_cast<DataT>(argument);
    }
  }

  DataT data_[NumElements];
};

template <typename T, typename... U, std::enable_if_t<(std::is_same_v<T, U> && ...), int> = 0>
marray(T, U...) -> marray<T, 1 + sizeof...(U)>;

} // namespace sycl
