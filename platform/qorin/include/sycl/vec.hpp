// sycl::vec: 1, 2, 3, 4, 8 or 16 elements side by side. The storage is a plain array and every operation a
// plain loop over it, which is what the compiler's vectoriser sees through best.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <utility>

#include <sycl/address_space.hpp>
#include <sycl/bit_cast.hpp>
#include <sycl/detail/convert.hpp>
#include <sycl/detail/elementwise_operators.hpp>
#include <sycl/detail/vec_names.hpp>
#include <sycl/half.hpp>

namespace sycl {

template <typename DataT, int NumElements>
class vec;

namespace detail {

template <typename Result, typename Source, int... Indices>
class vec_swizzle;
template <typename T>
class vec_element;

template <typename T>
inline constexpr bool is_vec_element_v = std::is_same_v<T, float> || std::is_same_v<T, double> ||
                                         std::is_same_v<T, half> || std::is_same_v<T, std::byte> ||
                                         (std::is_integral_v<T> && !std::is_const_v<T> &&
                                          !std::is_volatile_v<T> && sizeof(T) <= 8);

/// The signed integer of T's size: comparisons of vec<T, N> give vec<same_size_int<T>, N>.
template <typename T>
using same_size_int =
    std::conditional_t<sizeof(T) == 1, std::int8_t,
                       std::conditional_t<sizeof(T) == 2, std::int16_t,
                                          std::conditional_t<sizeof(T) == 4, std::int32_t, std::int64_t>>>;

/// Elements that an argument of a vec constructor brings, and whether it brings elements of a vec.
template <typename A>
struct vec_argument {
  static constexpr int count = 1;
  static constexpr bool is_vec = false;
};
template <typename T, int N>
struct vec_argument<vec<T, N>> {
  static constexpr int count = N;
  static constexpr bool is_vec = true;
  using element = T;
};
template <typename Result, typename Source, int... Indices>
struct vec_argument<vec_swizzle<Result, Source, Indices...>> : vec_argument<Result> {};

template <typename T, typename A>
constexpr bool brings_elements_of() {
  if constexpr (vec_argument<A>::is_vec)
    return std::is_same_v<typename vec_argument<A>::element, T>;
  else
    return std::is_convertible_v<A, T>;
}

/// Whether arguments of types A... together make up the N elements of a vec<T, N>; a lone scalar never does,
/// since that constructor is the explicit one.
template <typename T, int N, typename... A>
constexpr bool make_up_vec() {
  if constexpr (sizeof...(A) == 1)
    return (vec_argument<A>::is_vec && ...) && (vec_argument<A>::count + ...) == N &&
           (brings_elements_of<T, A>() && ...);
  else
    return (vec_argument<A>::count + ... + 0) == N && (brings_elements_of<T, A>() && ...);
}

constexpr int vec_storage_count(int count) {
  return count == 3 ? 4 : count;
}
constexpr std::size_t vec_alignment(std::size_t size) {
  return size < 64 ? size : 64;
}

} // namespace detail

template <typename DataT, int NumElements>
class alignas(detail::vec_alignment(sizeof(DataT) * std::size_t(detail::vec_storage_count(NumElements)))) vec
    : public detail::vec_names<vec<DataT, NumElements>, NumElements> {
  static_assert(NumElements == 1 || NumElements == 2 || NumElements == 3 || NumElements == 4 ||
                    NumElements == 8 || NumElements == 16,
                "a vec has 1, 2, 3, 4, 8 or 16 elements");
  static_assert(detail::is_vec_element_v<DataT>, "not an element type of vec");

 public:
  using element_type = DataT;
  using value_type = DataT;

  vec() = default;

  explicit constexpr vec(const DataT& value) : data_{} {
    for (int i = 0; i < NumElements; ++i)
      data_[i] = value;
  }

  /// From scalars, vecs and swizzles whose elements, in order, are exactly this vec's.
  template <typename... Args, std::enable_if_t<detail::make_up_vec<DataT, NumElements, Args...>(), int> = 0>
  constexpr vec(const Args&... args) : data_{} {
    int at = 0;
    (append(at, args), ...);
  }

  constexpr vec& operator=(const DataT& value) { return *this = vec(value); }

  template <int N = NumElements, std::enable_if_t<N == 1, int> = 0>
  constexpr operator DataT() const {
    return data_[0];
  }

  static constexpr std::size_t byte_size() noexcept { return sizeof(vec); }
  static constexpr std::size_t size() noexcept { return NumElements; }

  constexpr DataT& operator[](int index) { return data_[index]; }
  constexpr const DataT& operator[](int index) const { return data_[index]; }

  /// Element by element; a floating-point value outside an integer type's range gives an unspecified element.
  template <typename ConvertT, rounding_mode Mode = rounding_mode::automatic>
  constexpr vec<ConvertT, NumElements> convert() const {
    vec<ConvertT, NumElements> result{};
    for (int i = 0; i < NumElements; ++i)
      result[i] = detail::convert_element<ConvertT, Mode>(data_[i]);
    return result;
  }

  /// The same bits as another vec of the same size.
  template <typename AsT>
  constexpr AsT as() const {
    static_assert(detail::vec_argument<AsT>::is_vec, "as() gives a vec");
    return sycl::bit_cast<AsT>(*this);
  }

  /// A view of the elements with these indices; writing to it writes to this vec, so no index may repeat
  /// then.
  template <int... Indices>
  constexpr auto swizzle() {
    return pick<Indices...>(*this);
  }
  template <int... Indices>
  constexpr auto swizzle() const {
    return pick<Indices...>(*this);
  }

  /// Element i from and to ptr[offset * NumElements + i]; the memory needs the alignment of DataT only.
  template <typename T, access::address_space Space, access::decorated IsDecorated,
            std::enable_if_t<std::is_same_v<std::remove_const_t<T>, DataT>, int> = 0>
  void load(std::size_t offset, multi_ptr<T, Space, IsDecorated> ptr) {
    const DataT* from = ptr.get_raw() + offset * NumElements;
    for (int i = 0; i < NumElements; ++i)
      data_[i] = from[i];
  }
  template <access::address_space Space, access::decorated IsDecorated>
  void store(std::size_t offset, multi_ptr<DataT, Space, IsDecorated> ptr) const {
    DataT* to = ptr.get_raw() + offset * NumElements;
    for (int i = 0; i < NumElements; ++i)
      to[i] = data_[i];
  }

 private:
  using relation_type = vec<detail::same_size_int<DataT>, NumElements>;

 public:
  QORIN_ELEMENTWISE_OPERATORS(vec, DataT, NumElements, relation_type, -1)

 private:
  template <int... Indices, typename Self>
  static constexpr auto pick(Self& self) {
    static_assert(sizeof...(Indices) > 0 && ((Indices >= 0 && Indices < stored) && ...),
                  "swizzle index out of range");
    using element = std::conditional_t<std::is_const_v<Self>, const DataT, DataT>;
    if constexpr (sizeof...(Indices) == 1)
      return detail::vec_element<element>(self.data_[(Indices, ...)]);
    else
      return detail::vec_swizzle<vec<DataT, int(sizeof...(Indices))>, Self, Indices...>(self);
  }

  template <typename A>
  constexpr void append(int& at, const A& argument) {
    if constexpr (detail::vec_argument<A>::is_vec) {
      for (int i = 0; i < detail::vec_argument<A>::count; ++i)
        data_[at++] = argument[i];
    } else {
      data_[at++] = static_cast<DataT>(argument);
    }
  }

  static constexpr int stored = detail::vec_storage_count(NumElements);
  DataT data_[stored];
};

template <typename T, typename... U, std::enable_if_t<(std::is_same_v<T, U> && ...), int> = 0>
vec(T, U...) -> vec<T, 1 + int(sizeof...(U))>;

} // namespace sycl

#include <sycl/detail/vec_swizzle.hpp>
