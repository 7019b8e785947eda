#pragma once

#include <cstdint>

#include "../detail/parameters.hpp"

namespace kestro::hvl::rng {

namespace chi_square_method {

/// `gamma` with shape v / 2 and scale 2.
struct gamma_marsaglia {};

} // namespace chi_square_method

/// Sum of the squares of v independent standard normal numbers, v degrees of freedom: mean v, variance 2 v.
///
/// The values, words and tails are those of `gamma`: two words a value, three for v = 1, and `double` in pairs.
template <class T = float, class Method = chi_square_method::gamma_marsaglia>
class chi_square {
  static_assert(detail::is_one_of<T, float, double>, "chi_square yields float or double");
  static_assert(detail::is_one_of<Method, chi_square_method::gamma_marsaglia>);

 public:
  using result_type = T;
  using method_type = Method;

  chi_square() : chi_square(5) {}

  /// Throws `invalid_argument` ("v <= 0") unless v is positive.
  explicit chi_square(std::int32_t v) : v_(v) { detail::check_chi_square(v); }

  std::int32_t v() const { return v_; }

 private:
  std::int32_t v_;
};

} // namespace kestro::hvl::rng
