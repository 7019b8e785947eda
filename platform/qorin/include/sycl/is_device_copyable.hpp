// Which types may cross between host and device: their copies are copies of their bytes.
#pragma once

#include <array>
#include <optional>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <variant>

namespace sycl {

/// Programs specialise it for types of their own that are not trivially copyable and may be copied by their bytes.
template <class T>
struct is_device_copyable : std::is_trivially_copyable<T> {};
template <class T>
inline constexpr bool is_device_copyable_v = is_device_copyable<T>::value;

template <class T>
struct is_device_copyable<const T> : is_device_copyable<T> {};
template <class T>
struct is_device_copyable<volatile T> : is_device_copyable<T> {};
template <class T>
struct is_device_copyable<const volatile T> : is_device_copyable<T> {};
template <class T, std::size_t Size>
struct is_device_copyable<T[Size]> : is_device_copyable<T> {};
template <class T, std::size_t Size> // an array of constants is itself one, so without this two would fit
struct is_device_copyable<const T[Size]> : is_device_copyable<T> {};
template <class T, std::size_t Size>
struct is_device_copyable<volatile T[Size]> : is_device_copyable<T> {};
template <class T, std::size_t Size>
struct is_device_copyable<const volatile T[Size]> : is_device_copyable<T> {};

template <class T>
struct is_device_copyable<std::array<T, 0>> : std::true_type {};
template <class T, std::size_t Size>
struct is_device_copyable<std::array<T, Size>> : is_device_copyable<T> {};
template <class T>
struct is_device_copyable<std::optional<T>> : is_device_copyable<T> {};
template <class First, class Second>
struct is_device_copyable<std::pair<First, Second>>
    : std::bool_constant<is_device_copyable_v<First> && is_device_copyable_v<Second>> {};
template <class... T>
struct is_device_copyable<std::tuple<T...>> : std::bool_constant<(is_device_copyable_v<T> && ...)> {};
template <class... T>
struct is_device_copyable<std::variant<T...>> : std::bool_constant<(is_device_copyable_v<T> && ...)> {};
template <class Char, class Traits>
struct is_device_copyable<std::basic_string_view<Char, Traits>> : std::true_type {};

} // namespace sycl
