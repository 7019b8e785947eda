#pragma once

#include <cstdint>

#include "../detail/parameters.hpp"

namespace kestro::hvl::rng {

namespace geometric_method {
struct icdf {};
} // namespace geometric_method

/// How many trials, each a success with probability p, fail before the first success: k with probability p (1 - p)^k.
/// Mean (1 - p) / p, variance (1 - p) / p^2.
///
/// By inversion: floor(ln u / ln(1 - p)). Two words a value; the second one refines the first, so that probabilities hold
/// far into the tail. Values that would exceed 2^31 - 1 are 2^31 - 1, for either result type: below p = 1e-8 these are
/// more than one in 2e9, below 3e-10 half of all.
template <class T = std::int32_t, class Method = geometric_method::icdf>
class geometric {
  static_assert(detail::is_one_of<T, std::int32_t, std::uint32_t>, "geometric yields int or unsigned int");
  static_assert(detail::is_one_of<Method, geometric_method::icdf>);

 public:
  using result_type = T;
  using method_type = Method;

  geometric() : geometric(0.5) {}

  /// Throws `invalid_argument` ("p is not in (0, 1]") for any other p.
  explicit geometric(double p) : p_(p) { detail::check_geometric(p); }

  double p() const { return p_; }

 private:
  double p_;
};

} // namespace kestro::hvl::rng
