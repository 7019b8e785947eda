#pragma once

#include <cstdint>
#include <limits>

#include "../detail/parameters.hpp"

namespace kestro::hvl::rng {

namespace uniform_method {

/// Scales the raw word; rounding may carry a real value onto an end of the interval, or one step past it.
/// Integers are computed in `float`.
struct standard {};

/// As `standard`, and real values are clamped to [a, b]; integers are computed in `double`.
struct accurate {};

} // namespace uniform_method

/// Continuous (`float`, `double`) or discrete (`int`, `unsigned int`) uniform distribution on [a, b).
/// Consumes one word per value, so a `double` takes at most 2^32 different values.
template <class T = float, class Method = uniform_method::standard>
class uniform {
  static_assert(detail::is_one_of<T, float, double, int, unsigned int>,
                "uniform yields float, double, int or unsigned int");
  static_assert(detail::is_one_of<Method, uniform_method::standard, uniform_method::accurate>);

 public:
  using result_type = T;
  using method_type = Method;

  /// [0, 1) for real types, [0, largest value) for integers.
  uniform() : uniform(T(0), std::numeric_limits<T>::is_integer ? std::numeric_limits<T>::max() : T(1)) {}

  /// Throws `invalid_argument` unless a < b, both are finite and a + b and b - a do not overflow a real type.
  uniform(T a, T b) : a_(a), b_(b) {
    detail::require(a < b, "uniform", "a >= b");
    if constexpr (!std::numeric_limits<T>::is_integer)
      detail::require(detail::is_finite(b - a) && detail::is_finite(b + a), "uniform",
                      "b - a or a + b is not finite");
  }

  T a() const { return a_; }
  T b() const { return b_; }

 private:
  T a_, b_;
};

/// Uniformly distributed bits: the engine's words, or two consecutive words for a 64-bit result, the first
/// one low. `mcg59` gives the upper 32 of its 59 bits. `mrg32k3a` and `mcg31m1`, whose words are not uniform
/// in all bits, are refused with `unimplemented`.
template <class UInt = std::uint32_t>
class uniform_bits {
  static_assert(detail::is_one_of<UInt, std::uint32_t, std::uint64_t>,
                "uniform_bits yields std::uint32_t or std::uint64_t");

 public:
  using result_type = UInt;
};

/// The engine's raw 32-bit words, whatever their range (`mcg59`: the upper 32 of its 59 bits).
template <class UInt = std::uint32_t>
class bits {
  static_assert(detail::is_one_of<UInt, std::uint32_t>, "bits yields std::uint32_t");

 public:
  using result_type = UInt;
};

} // namespace kestro::hvl::rng
