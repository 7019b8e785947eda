// The math builtins that give a second result through a pointer, and nan().
#pragma once

#include <cstdint>
#include <limits>

#include <sycl/builtins/math.hpp>

namespace sycl {

namespace detail {

template <typename T>
T sincos_of(T x, T& cosine) {
  cosine = cos(x);
  return sin(x);
}
template <typename T>
T fract_of(T x, T& whole) {
  whole = floor(x);
  const T largest = nextafter(T(1), T(0)); // a tiny negative x less its floor rounds up to 1
  return x == whole ? copysign(T(0), x) : fmin(static_cast<T>(x - whole), largest);
}
template <typename T>
T modf_of(T x, T& whole) {
  whole = trunc(x);
  return copysign(x == whole ? T(0) : static_cast<T>(x - whole), x);
}
template <typename T>
T frexp_of(T x, int& exponent) {
  exponent = 0; // stays so where x has none
  const bool finite = fabs(x) <= std::numeric_limits<T>::max();
  return finite ? static_cast<T>(__builtin_frexp(static_cast<double>(x), &exponent)) : x;
}
template <typename T>
T lgamma_r_of(T x, int& sign) {
  return static_cast<T>(::lgamma_r(static_cast<double>(x), &sign));
}

template <typename Result, typename Second, typename F, typename... A>
Result elementwise_with(F f, Second& second, const A&... arguments) {
  Result result{};
  for (int i = 0; i < sequence<Result>::count; ++i)
    result[i] = f(arguments[i]..., second[i]);
  return result;
}

} // namespace detail

#define QORIN_TWO_RESULTS(name, second_scalar, second_sequence)                                              \
  template <typename T, access::address_space Space, access::decorated D, detail::if_floating_scalar<T> = 0> \
  T name(T x, multi_ptr<second_scalar, Space, D> second) {                                                   \
    return detail::name##_of(x, *second);                                                                    \
  }                                                                                                          \
  template <typename A, access::address_space Space, access::decorated D, detail::if_floating<A> = 0>        \
  detail::plain_t<A> name(const A& a, multi_ptr<second_sequence, Space, D> second) {                         \
    return detail::elementwise_with<detail::plain_t<A>>(                                                     \
        [](auto x, auto& y) { return detail::name##_of(x, y); }, *second, a);                                \
  }
#define QORIN_INTEGERS detail::sequence_of<A, int>
QORIN_TWO_RESULTS(sincos, T, detail::plain_t<A>)
QORIN_TWO_RESULTS(fract, T, detail::plain_t<A>)
QORIN_TWO_RESULTS(modf, T, detail::plain_t<A>)
QORIN_TWO_RESULTS(frexp, int, QORIN_INTEGERS)
QORIN_TWO_RESULTS(lgamma_r, int, QORIN_INTEGERS)
#undef QORIN_INTEGERS
#undef QORIN_TWO_RESULTS

template <typename T, access::address_space Space, access::decorated D, detail::if_floating_scalar<T> = 0>
T remquo(T x, T y, multi_ptr<int, Space, D> quotient) {
  return static_cast<T>(__builtin_remquo(static_cast<double>(x), static_cast<double>(y), quotient.get_raw()));
}
template <typename A, typename B, access::address_space Space, access::decorated D,
          detail::if_floating<A, B> = 0>
detail::plain_t<A> remquo(const A& a, const B& b, multi_ptr<detail::sequence_of<A, int>, Space, D> quotient) {
  return detail::elementwise_with<detail::plain_t<A>>(
      [](auto x, auto y, int& q) {
        return remquo(x, y,
                      address_space_cast<access::address_space::private_space, access::decorated::no>(&q));
      },
      *quotient, a, b);
}

/// A quiet NaN that carries the low bits of the code.
constexpr half nan(std::uint16_t code) {
  return sycl::bit_cast<half>(static_cast<std::uint16_t>(0x7E00u | (code & 0x01FFu)));
}
constexpr float nan(std::uint32_t code) {
  return sycl::bit_cast<float>(0x7FC00000u | (code & 0x003FFFFFu));
}
constexpr double nan(std::uint64_t code) {
  return sycl::bit_cast<double>(std::uint64_t(0x7FF8000000000000) | (code & 0x0007FFFFFFFFFFFF));
}
template <typename A, detail::if_integers<A> = 0>
constexpr auto nan(const A& codes) -> detail::sequence_of<A, decltype(nan(detail::element_t<A>()))> {
  return detail::elementwise<detail::sequence_of<A, decltype(nan(detail::element_t<A>()))>>(
      [](auto code) { return nan(code); }, codes);
}

} // namespace sycl
