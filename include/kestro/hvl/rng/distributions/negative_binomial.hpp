#pragma once

#include <cstdint>
#include <memory>

#include "../detail/parameters.hpp"
#include "../detail/record.hpp"

namespace kestro::hvl::rng {

namespace negative_binomial_method {
struct standard {};
} // namespace negative_binomial_method

/// How many trials, each a success with probability p, fail before success number a, which may be any positive real number: k
/// with probability Gamma(a + k) / (Gamma(a) k!) p^a (1 - p)^k. Mean a (1 - p) / p, variance a (1 - p) / p^2.
///
/// By inversion where p is at least 1/256 and the variance at most 2^20, through a table that all copies of the distribution
/// share and the first call builds: two words a value, the second one refining the first. Beyond as a Poisson number whose
/// mean is gamma distributed: six words a value. Values that would exceed 2^31 - 1 are 2^31 - 1, for either result type:
/// less than one in 1e9 as long as (a + 6 sqrt(a) + 21) / p is below 2^31.
template <class T = std::int32_t, class Method = negative_binomial_method::standard>
class negative_binomial {
  static_assert(detail::is_one_of<T, std::int32_t, std::uint32_t>,
                "negative_binomial yields int or unsigned int");
  static_assert(detail::is_one_of<Method, negative_binomial_method::standard>);

 public:
  using result_type = T;
  using method_type = Method;

  negative_binomial() : negative_binomial(1.0, 0.5) {}

  /// Throws `invalid_argument` ("a <= 0", "p is not in (0, 1]") unless a is positive and finite and p in (0, 1].
  negative_binomial(double a, double p) : a_(a), p_(p), record_(detail::negative_binomial_record(a, p)) {}

  // A move is a copy, so that no object is without its record.
  negative_binomial(const negative_binomial&) = default;
  negative_binomial& operator=(const negative_binomial&) = default;

  double a() const { return a_; }
  double p() const { return p_; }

 private:
  friend struct detail::distribution_access;

  double a_, p_;
  std::shared_ptr<detail::threshold_record> record_;
};

} // namespace kestro::hvl::rng
