#pragma once

#include <type_traits>

namespace sycl {

/// The bits of `from` as a value of type To.
template <typename To, typename From>
constexpr To bit_cast(const From& from) noexcept {
  static_assert(sizeof(To) == sizeof(From), "bit_cast needs two types of one size");
  static_assert(std::is_trivially_copyable_v<To> && std::is_trivially_copyable_v<From>,
                "bit_cast needs trivially copyable types");
  return __builtin_bit_cast(To, from);
}

} // namespace sycl
