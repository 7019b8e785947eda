#pragma once

#include <cstdint>

#include "../detail/parameters.hpp"

namespace kestro::hvl::rng {

namespace bernoulli_method {
struct icdf {};
} // namespace bernoulli_method

/// 1 with probability p, else 0. Mean p, variance p (1 - p).
///
/// By inversion: whether a uniform is below p. Two words a value, the second one refining the first.
template <class T = std::int32_t, class Method = bernoulli_method::icdf>
class bernoulli {
  static_assert(detail::is_one_of<T, std::int32_t, std::uint32_t>, "bernoulli yields int or unsigned int");
  static_assert(detail::is_one_of<Method, bernoulli_method::icdf>);

 public:
  using result_type = T;
  using method_type = Method;

  bernoulli() : bernoulli(0.5) {}

  /// Throws `invalid_argument` ("p is not in [0, 1]") for any other p.
  explicit bernoulli(double p) : p_(p) { detail::check_bernoulli(p); }

  double p() const { return p_; }

 private:
  double p_;
};

} // namespace kestro::hvl::rng
