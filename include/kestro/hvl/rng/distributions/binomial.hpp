#pragma once

#include <cstdint>
#include <memory>

#include "../detail/parameters.hpp"
#include "../detail/record.hpp"

namespace kestro::hvl::rng {

namespace binomial_method {
struct standard {};
} // namespace binomial_method

/// How many of `ntrial` independent trials succeed, each with probability p. Mean ntrial p, variance ntrial p (1 - p).
///
/// By inversion at variances up to 2^20, through a table that all copies of the distribution share and the first call
/// builds; by transformed rejection beyond. Two words a value; of an inversion the second one refines the first, so that
/// probabilities hold far into the tail.
template <class T = std::int32_t, class Method = binomial_method::standard>
class binomial {
  static_assert(detail::is_one_of<T, std::int32_t, std::uint32_t>, "binomial yields int or unsigned int");
  static_assert(detail::is_one_of<Method, binomial_method::standard>);

 public:
  using result_type = T;
  using method_type = Method;

  binomial() : binomial(5, 0.5) {}

  /// Throws `invalid_argument` ("ntrial < 0", "p is not in [0, 1]") for any other parameters.
  binomial(std::int32_t ntrial, double p)
      : ntrial_(ntrial), p_(p), record_(detail::binomial_record(ntrial, p)) {}

  // A move is a copy, so that no object is without its record.
  binomial(const binomial&) = default;
  binomial& operator=(const binomial&) = default;

  std::int32_t ntrial() const { return ntrial_; }
  double p() const { return p_; }

 private:
  friend struct detail::distribution_access;

  std::int32_t ntrial_;
  double p_;
  std::shared_ptr<detail::threshold_record> record_;
};

} // namespace kestro::hvl::rng
