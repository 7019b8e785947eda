#pragma once

#include <cstdint>
#include <limits>

#include "../detail/parameters.hpp"

namespace kestro::hvl::rng {

namespace uniform_method {

/// Scales the raw word; rounding may carry a real value onto an end of the interval, or one step past it.
/// Integers are computed in `float`: beyond 2^24 they come in steps (values of `uniform<int>()` are multiples of
/// 64), and an interval narrower than a step may yield a single value.
struct standard {};

/// As `standard`, and real values are clamped to [a, b]; integers are computed in `double`, where there are no
/// such steps.
struct accurate {};

} // namespace uniform_method

/// Continuous (`float`, `double`) or discrete (`int`, `unsigned int`) uniform distribution on [a, b).
/// Consumes one word per value, so a `double` takes at most 2^32 different values (mcg31m1: 2^31; mcg59: more).
///
/// An integer is at least a and at most b - 1, whatever the method. A real value may be b: `uniform<float>(0, 1)` gives
/// 1.0f for 191 of 2^32 words of philox4x32x10, ars5 and mt19937 and for about one in 2^25 of mcg31m1 and mcg59, by
/// either method.
/// Where that must not be, take `double`, which on [0, 1) stays below 1 (mcg59: but for one word in 2^54), or
/// `uniform<float>(0, std::nextafter(1.0f, 0.0f))`, whose greatest value is its b.
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
  uniform(T a, T b) : a_(a), b_(b) { detail::check_uniform(a, b); }

  T a() const { return a_; }
  T b() const { return b_; }

 private:
  T a_, b_;
};

/// Uniformly distributed bits: the engine's words, or two consecutive words for a 64-bit result, the first
/// one low. `mcg59` gives the upper 32 of its 59 bits. `mrg32k3a`, `mcg31m1` and `wichmann_hill`, whose words are not
/// uniform in all bits, are refused with `unimplemented`.
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
